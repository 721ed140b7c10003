#!/usr/bin/perl
# Doxygen input filter for the public headers.  The headers are written in
# plain C comments, for people reading them; this filter shows them to
# Doxygen as documentation without changing a line number:
#   - the comment that opens the file becomes the file's description;
#   - a comment that begins a line documents the declaration below it;
#   - a comment behind code on the same line documents that code (fields,
#     constants, typedefs);
#   - section rules such as "/* ---- walks ---- */" stay plain comments.
# Inside the comments, characters that Doxygen would read as commands or
# markup (\ @ < > & # % $ *) are escaped, so the text shows as written.
use strict;
use warnings;

my $state = 'code';    # code | doc | plain
my $seen_comment = 0;
my $file_doc = 0;      # the open comment describes the file, not yet marked

sub escape_text {
    my ($text) = @_;
    $text =~ s/([\\@<>&#%\$*])/\\$1/g;
    return $text;
}

# Escapes the body of a comment line, keeping the " * " decoration at the
# start and the closing "*/"; gives the line and whether the comment closed.
sub body {
    my ($line) = @_;
    my ($deco, $rest) = $line =~ /^(\s*\*(?!\/)\s?|\s*)(.*)$/s;
    if ($rest =~ /^(.*?)\*\/(.*)$/s) {
        my $close = $file_doc ? ' @file */' : '*/';
        $file_doc = 0;
        return ($deco . escape_text($1) . $close . $2, 1);
    }
    return ($deco . escape_text($rest), 0);
}

while (my $line = <>) {
    if ($state ne 'code') {
        if ($state eq 'plain') {
            $state = 'code' if $line =~ /\*\//;
            print $line;
            next;
        }
        my ($out, $closed) = body($line);
        $state = 'code' if $closed;
        print $out;
        next;
    }
    # A comment that opens in this line, outside a string.
    if ($line =~ /^([^"\/]*?)\/\*(?![*!])(.*)$/s) {
        my ($before, $after) = ($1, $2);
        my $first = !$seen_comment;
        $seen_comment = 1;
        my $marker;
        if ($before =~ /\S/) {
            $marker = '/**<';
        } elsif ($after =~ /^\s*-{2,}/) {
            $state = 'plain' unless $after =~ /\*\//;
            print $line;
            next;
        } elsif ($first && $. == 1 && $after =~ /^\s*$/) {
            $marker = '/** @file';
        } elsif ($first && $. == 1) {
            $marker = '/**';
            $file_doc = 1;    # marked where the comment closes
        } else {
            $marker = '/**';
        }
        my ($out, $closed) = body($after);
        $out =~ s/^\s*\*(?!\/)\s?/ /;    # no decoration right after the opener
        $state = $closed ? 'code' : 'doc';
        print $before, $marker, $out;
        next;
    }
    print $line;
}

#!/usr/bin/perl
# Doxygen input filter for the public headers.  The headers are written in
# plain C comments, for people reading them; this filter shows them to
# Doxygen as documentation without changing a line number:
#   - the comment that opens the file becomes the file's description;
#   - a comment that begins a line documents the declaration below it;
#   - a comment behind code on the same line documents that code (fields,
#     constants, typedefs);
#   - section rules such as "/* ---- walks ---- */" and comments behind a
#     preprocessor line (an include guard's #endif) stay plain comments.
# Inside the comments, characters that Doxygen would read as commands or
# markup (\ @ < > & # % $ *) are escaped outside double quotes (Doxygen
# shows quoted text as it stands), so the text shows as written.
use strict;
use warnings;

my $state = 'code';    # code | doc | plain
my $seen_comment = 0;
my $file_doc = 0;      # the open comment describes the file, not yet marked

my $in_quote = 0;      # inside a double-quoted text, which Doxygen shows as is

sub escape_text {
    my ($text) = @_;
    my @parts = split /"/, $text, -1;
    for my $i (0 .. $#parts) {
        $in_quote = !$in_quote if $i > 0;
        $parts[$i] =~ s/([\\@<>&#%\$*])/\\$1/g unless $in_quote;
    }
    return join '"', @parts;
}

# Escapes the body of a comment line, keeping the " * " decoration at the
# start and the closing "*/"; gives the line and whether the comment closed.
sub body {
    my ($line) = @_;
    my ($deco, $rest) = $line =~ /^(\s*\*(?!\/)\s?|\s*)(.*)$/s;
    if ($rest =~ /^(.*?)\*\/(.*)$/s) {
        my $close = $file_doc ? ' @file */' : '*/';
        $file_doc = 0;
        my $text = escape_text($1);
        $in_quote = 0;
        return ($deco . $text . $close . $2, 1);
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
        if ($before =~ /^\s*#/) {
            # Behind a preprocessor line (an include guard's #endif): no
            # documentation of the declaration before it.
            $state = 'plain' unless $after =~ /\*\//;
            print $line;
            next;
        } elsif ($before =~ /\S/) {
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

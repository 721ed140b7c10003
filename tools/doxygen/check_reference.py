#!/usr/bin/env python3
"""Checks the generated reference (Doxygen's XML) against the export lists:
every exported function and data word is documented in a family group page
with a text of its own, and no text is an include guard's name.
Usage: check_reference.py XML_DIR EXPORT_LIST...   Exits 1 on any finding."""
import glob
import re
import sys
import xml.etree.ElementTree as ET

xml_dir, lists = sys.argv[1], sys.argv[2:]
wanted = set()
for name in lists:
    with open(name) as f:
        wanted |= {w for w in (line.split('#')[0].strip() for line in f) if w}

texts = {}  # exported name -> its texts on the group pages
for page in glob.glob(f'{xml_dir}/group__*.xml'):
    for member in ET.parse(page).getroot().iter('memberdef'):
        name = member.findtext('name')
        if name in wanted:
            parts = (member.find(tag) for tag in ('briefdescription', 'detaileddescription'))
            text = ' '.join(' '.join(''.join(p.itertext()).split()) for p in parts if p is not None)
            texts.setdefault(name, []).append(text.strip())

problems = []
for name in sorted(wanted):
    found = texts.get(name)
    if not found:
        problems.append(f'{name}: on no group page')
    elif not any(found):
        problems.append(f'{name}: no text')
    elif any(re.search(r'\bVORN_\w+_H\b', t) for t in found):
        problems.append(f'{name}: text holds an include guard')
for p in problems:
    print(f'reference: {p}')
print(f'reference: {len(wanted) - len(problems)} of {len(wanted)} exported names documented')
sys.exit(1 if problems else 0)

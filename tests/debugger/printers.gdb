# What the printers show for every container of the fixture; the output
# after "=== start" is compared with printers.expected.
echo === start\n
echo -- lists: empty, short, long (print elements), rings, bytes, doubles\n
print *gl_empty
print *gl_five
print *gl_long
set print elements 4
print *gl_long
print *hsh
print *dict
set print elements 200
print *el_bytes
print *el_ring
print *el_empty_ring
print *dbll
print *sl_points
print *sl_ring
print gb_ints
print gb_moved
print *da_ints
print *da_empty
echo -- damaged here, printed without a limit: never hangs\n
set print elements unlimited
echo a cycle in an open list, then under a huge count (remembered nodes, then Brent's test)\n
set var gl_five->last->next = gl_five->first->next
print *gl_five
set var gl_five->count = 100000000
print *gl_five
python SEEN_LIMIT = 1
print *gl_five
python SEEN_LIMIT = 100000
echo a count above the links, a ring one item short, the tree's chain closed, a table's count\n
set var gl_five->last->next = 0
set var gl_five->count = 7
print *gl_five
set var gl_five->count = 5
set var el_ring->count = 4
print *el_ring
set var el_ring->count = 3
set var gt_dupl->last->next = gt_dupl->first
print *gt_dupl
set var gt_dupl->last->next = 0
set var hsh->count = 5
print *hsh
set var hsh->count = 4
set print elements 200
echo -- the tree, its iterators\n
print *gt_dupl
print *gt_empty
print *gt_walk
print *gt_fresh
print *gt_orphan
echo -- lookups\n
print *hsh
print *lu
print *lu_empty
print *lut_read
print *lut_write
echo -- dictionaries and values\n
print *dict
vorn-dict dict
vorn-dict rdb
print value_int
print value_text
print value_dict
print *entry
set print pretty on
vorn-dict rdb
set print pretty off
echo -- item words and elements as the caller's types\n
vorn-items gl_five int
vorn-items gt_dupl long
vorn-items sl_points 'struct point'
vorn-items dict GENDICT_item
vorn-items el_bytes short
vorn-items *da_ints int
vorn-items hsh int
vorn-element-type 4 int
print *el_bytes
print gb_ints
vorn-element-type
vorn-element-type 8 bytes
print *dbll
vorn-element-type 8 double
echo -- the colour table\n
print colour
vorn-clut
echo -- mistakes are told, not raised into the printout\n
python
for cmd in ("vorn-items gl_five 'struct nosuch'", "vorn-items value_int int",
            "vorn-items el_ring int",
            "vorn-dict gl_five", "vorn-element-type 2 double"):
    try:
        gdb.execute(cmd)
    except gdb.error as e:
        print(e)
end

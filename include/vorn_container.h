/*
 * vorn_container.h - the one header a host includes.
 *
 * General-purpose containers behind a C interface: linked lists (GL, EL, SL),
 * a stack (ES), a list in one block (GB), a list of doubles (DBLL), an AVL
 * tree with live iterators (GT), a growable array and number sets (DA, SA),
 * a hash table and the lookups on it (HSH, vorn_lu, io_lut), the process-wide
 * colour table (CLUT, RGBLUT_init, GE_ words) and typed dictionaries with a
 * text form (GENDICT, RDBDICT).
 *
 * Everything runs on the caller's thread; the library takes no lock.  A
 * container belongs to one thread at a time.  Compiles as C99, C11 and C++.
 */
#ifndef VORN_CONTAINER_H
#define VORN_CONTAINER_H

#include "vorn_base.h"
#include "vorn_raises.h"

#include "vorn_gl.h"
#include "vorn_el.h"
#include "vorn_sl.h"
#include "vorn_es.h"
#include "vorn_gb.h"
#include "vorn_dbll.h"
#include "vorn_gt.h"
#include "vorn_da.h"
#include "vorn_sa.h"
#include "vorn_hsh.h"
#include "vorn_lu.h"
#include "vorn_io_lut.h"
#include "vorn_clut.h"
#include "vorn_gendict.h"
#include "vorn_rdbdict.h"

#endif /* VORN_CONTAINER_H */

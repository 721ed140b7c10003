/* The demo: each family shows what it does, one function a family. */
#ifndef VORN_DEMO_H
#define VORN_DEMO_H

void demo_gl(void);
void demo_el(void);
void demo_sl(void);
void demo_es(void);
void demo_gb(void);
void demo_dbll(void);
void demo_gt(void);
void demo_da(void);
void demo_sa(void);
void demo_hsh(void);
void demo_lu(void);
void demo_io_lut(void);
void demo_clut(void);
void demo_gendict(void);
void demo_rdbdict(void);

#endif

/* What the C example needs of a C library, for a host without one. */
#ifndef MIRA_TESTS_HOSTS_STDIO_H_
#define MIRA_TESTS_HOSTS_STDIO_H_

/* Knows %s alone. */
int printf(const char* format, ...);

#endif

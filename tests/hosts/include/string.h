/* What the C example needs of a C library, for a host without one. */
#ifndef MIRA_TESTS_HOSTS_STRING_H_
#define MIRA_TESTS_HOSTS_STRING_H_

#include <stddef.h>

size_t strlen(const char* text);
char* strstr(const char* text, const char* part);
void* memset(void* memory, int value, size_t size);

#endif

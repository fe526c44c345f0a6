/*
 * A C library of the few functions that the C example needs, on kernel32 alone: the example becomes
 * a program that no runtime of ours, and no Windows SDK, has a part in.
 */

#include <stdarg.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* bytes, unsigned long size,
                                              unsigned long* written, void* overlapped);
__declspec(dllimport) void __stdcall ExitProcess(unsigned int status);

int main(void);

size_t strlen(const char* text) {
  size_t length = 0;
  while (text[length] != 0) ++length;
  return length;
}

char* strstr(const char* text, const char* part) {
  for (; *text != 0; ++text) {
    size_t i = 0;
    while (part[i] != 0 && text[i] == part[i]) ++i;
    if (part[i] == 0) return (char*)text;
  }
  return NULL;
}

void* memset(void* memory, int value, size_t size) {
  volatile unsigned char* bytes = memory;
  while (size-- != 0) *bytes++ = (unsigned char)value;
  return memory;
}

static void write(const char* text, size_t size) {
  const unsigned long standard_output = (unsigned long)-11;
  unsigned long written = 0;
  WriteFile(GetStdHandle(standard_output), text, (unsigned long)size, &written, NULL);
}

int printf(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  while (*format != 0) {
    const char* text = format;
    size_t size = 1;
    if (format[0] == '%' && format[1] == 's') {
      text = va_arg(arguments, const char*);
      size = strlen(text);
      ++format;
    }
    write(text, size);
    ++format;
  }
  va_end(arguments);
  return 0;
}

void __cdecl mainCRTStartup(void) { ExitProcess((unsigned int)main()); }

/* Bounded formatting. */
#ifndef SIGNAL_TZM_FORMAT_H
#define SIGNAL_TZM_FORMAT_H

#include <signal_tzm/types.h>

#include <stdarg.h>
#include <stddef.h>

/** @name Bounded formatting
 * Write the text of `format` and its arguments into `buffer` of `size` bytes, the terminating zero
 * included, and return the count of characters before it. @{ */
TZM_API int sprintf_s(char* buffer, size_t size, const char* format, ...);
TZM_API int vsprintf_s(char* buffer, size_t size, const char* format, va_list arguments);
/** @} */

#endif

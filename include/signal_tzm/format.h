/* Bounded formatting. */
#ifndef SIGNAL_TZM_FORMAT_H
#define SIGNAL_TZM_FORMAT_H

#include <signal_tzm/types.h>

#include <stdarg.h>
#include <stddef.h>

/** @name Bounded formatting
 * Write the text of `format` and its arguments, with a terminating zero, into `buffer` of `size` bytes,
 * never past it, and return the count of characters before the zero. Where the text does not fit, the
 * format is not well formed, or an argument is bad (a null string), the buffer holds an empty string and
 * the result is -1; for a null buffer or a size of 0 nothing is written.
 *
 * Conversions are those of C's printf that need no locale and no wide characters: d i u o x X c s p e E
 * f F g G a A and %%, with flags, width, precision (also `*`) and the length modifiers. Floating values
 * are rounded from their exact decimal value, ties to even. %n is refused. @{ */
#ifdef __GNUC__
#define TZM_FORMAT(first) __attribute__((format(printf, 3, first)))
#else
#define TZM_FORMAT(first)
#endif
TZM_API int sprintf_s(char* buffer, size_t size, const char* format, ...) TZM_FORMAT(4);
TZM_API int vsprintf_s(char* buffer, size_t size, const char* format, va_list arguments) TZM_FORMAT(0);
TZM_API int SecVsnprintfImpl(char* buffer, size_t size, const char* format, va_list arguments) TZM_FORMAT(0);
#undef TZM_FORMAT
/** @} */

#endif

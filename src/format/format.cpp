// Bounded formatting: the conversions of C's printf that need no locale and no wide characters, written
// from scratch so that the library depends on no formatting of the system's.
#include <signal_tzm/format.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

using namespace std::string_view_literals;

// ---- Where the text goes ----

// Counts what does not fit instead of writing it; the last byte is kept for the terminating zero.
class Output {
 public:
  Output(char* buffer, size_t size) : buffer_(buffer), room_(size - 1) {}

  // Whether `count` more characters fit; if not, nothing is written any more.
  bool Reserve(int64_t count) {
    if (count > 0 && static_cast<uint64_t>(count) > room_ - used_) overflow_ = true;
    return !overflow_;
  }
  void Put(char c) { Repeat(c, 1); }
  void Repeat(char c, int64_t count) {
    if (!Reserve(count)) return;
    for (; count > 0; --count) buffer_[used_++] = c;
  }
  void Put(const char* text, int64_t count) {
    if (!Reserve(count)) return;
    std::memcpy(buffer_ + used_, text, static_cast<size_t>(count));
    used_ += static_cast<size_t>(count);
  }
  // The length of the text, or -1 and an empty string.
  int Finish(bool valid) {
    if (!valid || overflow_ || used_ > INT_MAX) used_ = 0, valid = false;
    buffer_[used_] = 0;
    return valid ? static_cast<int>(used_) : -1;
  }

 private:
  char* buffer_;
  size_t room_, used_ = 0;
  bool overflow_ = false;
};

// ---- One conversion ----

enum class Length { kNone, kChar, kShort, kLong, kLongLong, kMax, kSize, kPtrdiff, kLongDouble };

struct Conversion {
  bool left = false, plus = false, space = false, alternate = false, zero = false;
  int width = 0;
  int precision = -1;  // none given
  Length length = Length::kNone;
  char letter = 0;

  bool Upper() const { return letter >= 'A' && letter <= 'Z'; }
};

// A va_list as an object that functions can share.
struct Arguments {
  va_list list;
};

// Writes sign or prefix, then a body of `size` characters by `body`, padded to the width. Zeros of the
// padding stand between prefix and body.
template <class Body>
void Field(Output& out, const Conversion& c, std::string_view prefix, int64_t size, bool zeros, Body body) {
  const auto head = static_cast<int64_t>(prefix.size());
  const int64_t pad = c.width - head - size;
  if (!out.Reserve(head + size)) return;
  if (!c.left && !zeros) out.Repeat(' ', pad);
  out.Put(prefix.data(), head);
  if (!c.left && zeros) out.Repeat('0', pad);
  body();
  if (c.left) out.Repeat(' ', pad);
}

std::string_view Sign(const Conversion& c, bool negative) {
  return negative ? "-"sv : c.plus ? "+"sv : c.space ? " "sv : ""sv;
}

// ---- Integers ----

// The digits of `value` end at `end`; the first is returned.
char* Digits(uint64_t value, unsigned base, bool upper, char* end) {
  for (; value != 0; value /= base) {
    const char digit = "0123456789abcdef"[value % base];
    *--end = upper && digit > '9' ? static_cast<char>(digit - 'a' + 'A') : digit;
  }
  return end;
}

void Integer(Output& out, const Conversion& c, std::string_view prefix, uint64_t value, unsigned base) {
  char digits[24];
  char* const end = digits + sizeof digits;
  const char* const first = Digits(value, base, c.Upper(), end);
  const int64_t count = end - first;
  int64_t least = c.precision < 0 ? 1 : c.precision;
  if (base == 8 && c.alternate && least <= count) least = count + 1;
  const int64_t zeros = std::max<int64_t>(least - count, 0);
  Field(out, c, prefix, zeros + count, c.zero && c.precision < 0, [&] {
    out.Repeat('0', zeros);
    out.Put(first, count);
  });
}

int64_t SignedArgument(Length length, Arguments& arguments) {
  switch (length) {
    case Length::kChar: return static_cast<signed char>(va_arg(arguments.list, int));
    case Length::kShort: return static_cast<short>(va_arg(arguments.list, int));
    case Length::kNone: return va_arg(arguments.list, int);
    default: return va_arg(arguments.list, int64_t);
  }
}

uint64_t UnsignedArgument(Length length, Arguments& arguments) {
  switch (length) {
    case Length::kChar: return static_cast<unsigned char>(va_arg(arguments.list, int));
    case Length::kShort: return static_cast<unsigned short>(va_arg(arguments.list, int));
    case Length::kNone: return va_arg(arguments.list, unsigned);
    default: return va_arg(arguments.list, uint64_t);
  }
}

// ---- Floating values ----

using UInt128 = unsigned __int128;

// mantissa * 2^exponent, the mantissa below 2^bits; its leading one is bit bits - 1 unless the value is subnormal or 0.
struct Binary {
  UInt128 mantissa;
  int exponent;
  int bits;
  bool negative, infinite, nan;
};

Binary Split(double value) {
  const auto bits = std::bit_cast<uint64_t>(value);
  const int biased = static_cast<int>(bits >> 52 & 0x7ff);
  const uint64_t fraction = bits & ((uint64_t{1} << 52) - 1);
  const bool special = biased == 0x7ff;
  return {fraction | (biased != 0 ? uint64_t{1} << 52 : 0), (biased != 0 ? biased : 1) - 1075, 53,
          bits >> 63 != 0, special && fraction == 0, special && fraction != 0};
}

Binary Split(long double value) {
#if LDBL_MANT_DIG == 64  // the leading one is stored
  uint64_t mantissa;
  uint16_t top;
  std::memcpy(&mantissa, &value, sizeof mantissa);
  std::memcpy(&top, reinterpret_cast<const char*>(&value) + sizeof mantissa, sizeof top);
  const int biased = top & 0x7fff;
  const bool special = biased == 0x7fff, fraction = mantissa << 1 != 0;
  return {mantissa, (biased != 0 ? biased : 1) - 16446, 64, top >> 15 != 0, special && !fraction, special && fraction};
#else
  static_assert(LDBL_MANT_DIG == 113);
  const auto bits = std::bit_cast<UInt128>(value);
  const int biased = static_cast<int>(bits >> 112) & 0x7fff;
  const UInt128 one = static_cast<UInt128>(1) << 112, fraction = bits & (one - 1);
  const bool special = biased == 0x7fff;
  return {fraction | (biased != 0 ? one : 0), (biased != 0 ? biased : 1) - 16495, 113,
          bits >> 127 != 0, special && fraction == 0, special && fraction != 0};
#endif
}

// The exact decimal digits of a binary value, rounded to a count when asked: d0.d1d2... * 10^exponent.
class Decimal {
 public:
  // m * 2^e is an integer for e >= 0, and m * 5^-e * 10^e below.
  explicit Decimal(const Binary& value) : scale_(value.exponent < 0 ? value.exponent : 0) {
    for (UInt128 rest = value.mantissa; rest != 0; rest /= kBase) Append(static_cast<uint32_t>(rest % kBase));
    const int power = value.exponent < 0 ? -value.exponent : value.exponent;
    const uint32_t step = value.exponent < 0 ? 5 : 2;
    for (int done = 0; done < power;) {
      uint64_t factor = 1;
      for (; done < power && factor * step < kBase; ++done) factor *= step;
      uint64_t carry = 0;
      for (int i = 0; i < count_; ++i) {
        carry += limbs_[i] * factor;
        limbs_[i] = static_cast<uint32_t>(carry % kBase);
        carry /= kBase;
      }
      if (carry != 0) Append(static_cast<uint32_t>(carry));
    }
  }

  // Keeps `count` digits, ties to even.
  void Round(int64_t count) {
    const int size = Size();
    if (count >= size) return;
    if (count < 0) {
      count_ = 0;
      return;
    }
    const int kept = size - static_cast<int>(count);  // the lowest digit that stays
    const int next = Digit(kept - 1);
    bool more = false;
    for (int i = 0; i < kept - 1; ++i) more = more || Digit(i) != 0;
    const bool odd = Digit(kept) % 2 != 0;
    const int limb = kept / kPlaces;
    for (int i = 0; i < limb; ++i) limbs_[i] = 0;
    if (limb == count_) Append(0);  // all of its digits go
    limbs_[limb] -= limbs_[limb] % kPower[kept % kPlaces];
    if (next > 5 || (next == 5 && (more || odd))) {
      limbs_[limb] += kPower[kept % kPlaces];
      for (int i = limb; limbs_[i] >= kBase; ++i) {
        limbs_[i] -= kBase;
        if (i + 1 == count_) Append(0);
        ++limbs_[i + 1];
      }
    }
    while (count_ > 0 && limbs_[count_ - 1] == 0) --count_;
  }

  // Digit of weight 10^place, also outside what is stored.
  char At(int64_t place) const {
    const int64_t digit = place - scale_;
    const bool stored = digit >= 0 && digit < int64_t{kPlaces} * count_;
    return static_cast<char>('0' + (stored ? Digit(static_cast<int>(digit)) : 0));
  }
  int Exponent() const { return count_ == 0 ? 0 : Size() - 1 + scale_; }
  // The lowest place that holds a digit other than 0; 0 for zero.
  int LastPlace() const {
    if (count_ == 0) return 0;
    int digit = 0;
    while (Digit(digit) == 0) ++digit;
    return digit + scale_;
  }

 private:
  static constexpr uint32_t kBase = 1000000000;
  static constexpr int kPlaces = 9;
  static constexpr uint32_t kPower[kPlaces] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
  // Integers below 2^LDBL_MAX_EXP, and mantissas times 5^k for the least exponent: under 0.7 digits a bit; and one more
  // for a carry.
  static constexpr int kLimbs = ((LDBL_MAX_EXP + 2 * LDBL_MANT_DIG) * 7 / 10 + 64) / kPlaces + 2;

  void Append(uint32_t limb) { limbs_[count_++] = limb; }
  // The digit of weight 10^(index + scale_), 0 beyond the highest.
  int Digit(int index) const {
    return index / kPlaces == count_ ? 0 : static_cast<int>(limbs_[index / kPlaces] / kPower[index % kPlaces] % 10);
  }
  int Size() const {
    int size = kPlaces * count_;
    while (size > 0 && Digit(size - 1) == 0) --size;
    return size;
  }

  uint32_t limbs_[kLimbs];  // base 10^9, least first; the highest is not 0
  int count_ = 0, scale_;
};

void Fixed(Output& out, const Conversion& c, std::string_view sign, const Decimal& value, int64_t precision) {
  const int64_t top = std::max(value.Exponent(), 0);
  const bool point = precision > 0 || c.alternate;
  Field(out, c, sign, top + 1 + point + precision, c.zero, [&] {
    for (int64_t place = top; place >= 0; --place) out.Put(value.At(place));
    if (point) out.Put('.');
    for (int64_t place = -1; place >= -precision; --place) out.Put(value.At(place));
  });
}

// 'e' or 'p', a sign and at least `least` decimal digits.
int64_t ExponentText(char letter, int exponent, int least, char* text) {
  char digits[8];
  char* const end = digits + sizeof digits;
  char* first = Digits(static_cast<uint64_t>(exponent < 0 ? -exponent : exponent), 10, false, end);
  while (end - first < least) *--first = '0';
  text[0] = letter;
  text[1] = exponent < 0 ? '-' : '+';
  std::memcpy(text + 2, first, static_cast<size_t>(end - first));
  return 2 + (end - first);
}

void Scientific(Output& out, const Conversion& c, std::string_view sign, const Decimal& value, int64_t precision) {
  const int exponent = value.Exponent();
  const bool point = precision > 0 || c.alternate;
  char power[12];
  const int64_t powerSize = ExponentText(c.Upper() ? 'E' : 'e', exponent, 2, power);
  Field(out, c, sign, 1 + point + precision + powerSize, c.zero, [&] {
    out.Put(value.At(exponent));
    if (point) out.Put('.');
    for (int64_t k = 1; k <= precision; ++k) out.Put(value.At(exponent - k));
    out.Put(power, powerSize);
  });
}

void General(Output& out, const Conversion& c, std::string_view sign, Decimal& value) {
  const int64_t digits = c.precision < 0 ? 6 : c.precision == 0 ? 1 : c.precision;
  value.Round(digits);
  const int exponent = value.Exponent();
  const int64_t last = -value.LastPlace();  // digits after the point that are not trailing zeros
  if (exponent < -4 || exponent >= digits) {
    int64_t precision = digits - 1;
    if (!c.alternate) precision = std::max<int64_t>(last + exponent, 0);
    Scientific(out, c, sign, value, precision);
  } else {
    int64_t precision = digits - 1 - exponent;
    if (!c.alternate) precision = std::max<int64_t>(last, 0);
    Fixed(out, c, sign, value, precision);
  }
}

// One hexadecimal digit, a point, the rest of the mantissa, and a power of two. A format that stores its
// leading one shows four bits before the point, the others that one bit.
void Hexadecimal(Output& out, const Conversion& c, std::string_view sign, const Binary& value) {
  const int fractionBits = (value.bits - 1) / 4 * 4;
  int digits = fractionBits / 4;
  UInt128 mantissa = value.mantissa;
  int exponent = mantissa == 0 ? 0 : value.exponent + fractionBits;
  if (c.precision < 0) {
    while (digits > 0 && (mantissa >> (4 * (fractionBits / 4 - digits)) & 15) == 0) --digits;
  } else if (c.precision < digits) {
    digits = c.precision;
    const int drop = fractionBits - 4 * digits;
    const UInt128 unit = static_cast<UInt128>(1) << drop, rest = mantissa & (unit - 1);
    mantissa -= rest;
    if (rest > unit / 2 || (rest == unit / 2 && (mantissa & unit) != 0)) mantissa += unit;
  }
  if (mantissa >> fractionBits > 15) {  // rounded past the leading digit
    mantissa >>= 4;
    exponent += 4;
  }
  const int64_t zeros = c.precision > digits ? c.precision - digits : 0;
  const bool point = digits + zeros > 0 || c.alternate;
  char prefix[4], power[12];
  size_t head = 0;
  for (char character : sign) prefix[head++] = character;
  prefix[head++] = '0';
  prefix[head++] = c.Upper() ? 'X' : 'x';
  const int64_t powerSize = ExponentText(c.Upper() ? 'P' : 'p', exponent, 1, power);
  const auto digit = [&](int index) {
    const auto nibble = static_cast<unsigned>(mantissa >> (fractionBits - 4 * index)) & 15;
    return (c.Upper() ? "0123456789ABCDEF" : "0123456789abcdef")[nibble];
  };
  Field(out, c, {prefix, head}, 1 + point + digits + zeros + powerSize, c.zero, [&] {
    out.Put(digit(0));
    if (point) out.Put('.');
    for (int k = 1; k <= digits; ++k) out.Put(digit(k));
    out.Repeat('0', zeros);
    out.Put(power, powerSize);
  });
}

void Floating(Output& out, const Conversion& c, const Binary& value) {
  const std::string_view sign = Sign(c, value.negative);
  if (value.infinite || value.nan) {
    const char* const word = value.nan ? (c.Upper() ? "NAN" : "nan") : (c.Upper() ? "INF" : "inf");
    Field(out, c, sign, 3, false, [&] { out.Put(word, 3); });
    return;
  }
  const char kind = static_cast<char>(c.letter | 0x20);
  if (kind == 'a') {
    Hexadecimal(out, c, sign, value);
    return;
  }
  Decimal decimal(value);
  const int64_t precision = c.precision < 0 ? 6 : c.precision;
  if (kind == 'g') {
    General(out, c, sign, decimal);
  } else if (kind == 'f') {
    decimal.Round(decimal.Exponent() + 1 + precision);
    Fixed(out, c, sign, decimal, precision);
  } else {
    decimal.Round(1 + precision);
    Scientific(out, c, sign, decimal, precision);
  }
}

// ---- The format ----

// A number in the format, -1 if it does not fit an int.
int Number(const char*& format) {
  int64_t value = 0;
  for (; *format >= '0' && *format <= '9'; ++format)
    if (value <= INT_MAX) value = 10 * value + (*format - '0');
  return value <= INT_MAX ? static_cast<int>(value) : -1;
}

// The text between '%' and the conversion letter; false if it is not well formed.
bool Parse(const char*& format, Arguments& arguments, Conversion& c) {
  for (;; ++format) {
    if (*format == '-') c.left = true;
    else if (*format == '+') c.plus = true;
    else if (*format == ' ') c.space = true;
    else if (*format == '#') c.alternate = true;
    else if (*format == '0') c.zero = true;
    else break;
  }
  if (*format == '*') {
    ++format;
    c.width = va_arg(arguments.list, int);
    if (c.width < 0) {
      if (c.width == INT_MIN) return false;
      c.left = true;
      c.width = -c.width;
    }
  } else if ((c.width = Number(format)) < 0) {
    return false;
  }
  if (*format == '.') {
    ++format;
    if (*format == '*') {
      ++format;
      c.precision = va_arg(arguments.list, int);
      if (c.precision < 0) c.precision = -1;
    } else if ((c.precision = Number(format)) < 0) {
      return false;
    }
  }
  struct { const char* text; Length length; } static constexpr kLengths[] = {
      {"hh", Length::kChar}, {"h", Length::kShort}, {"ll", Length::kLongLong}, {"l", Length::kLong},
      {"j", Length::kMax}, {"z", Length::kSize}, {"t", Length::kPtrdiff}, {"L", Length::kLongDouble}};
  for (const auto& entry : kLengths) {
    const size_t size = entry.text[1] != 0 ? 2 : 1;
    if (entry.text[0] == format[0] && (size == 1 || entry.text[1] == format[1])) {
      c.length = entry.length;
      format += size;
      break;
    }
  }
  c.letter = *format;
  if (c.letter != 0) ++format;
  return true;
}

// Writes one conversion; false if it is unknown or its argument is bad.
bool Convert(Output& out, const Conversion& c, Arguments& arguments) {
  const bool integerLength = c.length != Length::kLongDouble, plainLength = c.length == Length::kNone;
  switch (c.letter) {
    case 'd': case 'i': {
      if (!integerLength) return false;
      const int64_t value = SignedArgument(c.length, arguments);
      const uint64_t magnitude = value < 0 ? -static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
      Integer(out, c, Sign(c, value < 0), magnitude, 10);
      return true;
    }
    case 'u': case 'o': case 'x': case 'X': {
      if (!integerLength) return false;
      const uint64_t value = UnsignedArgument(c.length, arguments);
      const bool hexadecimal = c.letter == 'x' || c.letter == 'X';
      const auto prefix = !hexadecimal || !c.alternate || value == 0 ? ""sv : c.letter == 'x' ? "0x"sv : "0X"sv;
      Integer(out, c, prefix, value, hexadecimal ? 16 : c.letter == 'o' ? 8 : 10);
      return true;
    }
    case 'e': case 'E': case 'f': case 'F': case 'g': case 'G': case 'a': case 'A':
      if (c.length == Length::kLongDouble) Floating(out, c, Split(va_arg(arguments.list, long double)));
      else if (plainLength || c.length == Length::kLong) Floating(out, c, Split(va_arg(arguments.list, double)));
      else return false;
      return true;
    case 'c': {
      if (!plainLength) return false;
      const char value = static_cast<char>(va_arg(arguments.list, int));
      Field(out, c, ""sv, 1, false, [&] { out.Put(value); });
      return true;
    }
    case 's': {
      const char* const text = va_arg(arguments.list, const char*);
      if (!plainLength || text == nullptr) return false;
      int64_t size = 0;
      while ((c.precision < 0 || size < c.precision) && text[size] != 0) ++size;
      Field(out, c, ""sv, size, false, [&] { out.Put(text, size); });
      return true;
    }
    case 'p': {
      if (!plainLength) return false;
      const void* const pointer = va_arg(arguments.list, void*);
      if (pointer == nullptr) Field(out, c, ""sv, 5, false, [&] { out.Put("(nil)", 5); });
      else Integer(out, c, c.plus ? "+0x"sv : c.space ? " 0x"sv : "0x"sv, reinterpret_cast<uintptr_t>(pointer), 16);
      return true;
    }
    default:
      return false;
  }
}

}  // namespace

int SecVsnprintfImpl(char* buffer, size_t size, const char* format, va_list list) {
  if (buffer == nullptr || size == 0) return -1;
  Output out(buffer, size);
  if (format == nullptr) return out.Finish(false);
  Arguments arguments;
  va_copy(arguments.list, list);
  bool valid = true;
  while (valid && *format != 0) {
    const char* const text = format;
    while (*format != 0 && *format != '%') ++format;
    out.Put(text, format - text);
    if (*format == 0) break;
    ++format;
    if (*format == '%') {
      out.Put(*format++);
      continue;
    }
    Conversion conversion;
    valid = Parse(format, arguments, conversion) && Convert(out, conversion, arguments);
  }
  va_end(arguments.list);
  return out.Finish(valid);
}

int vsprintf_s(char* buffer, size_t size, const char* format, va_list arguments) {
  return SecVsnprintfImpl(buffer, size, format, arguments);
}

int sprintf_s(char* buffer, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = SecVsnprintfImpl(buffer, size, format, arguments);
  va_end(arguments);
  return length;
}

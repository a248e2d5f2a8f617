// Bounded formatting against the system's snprintf, and what snprintf does not do: refusals.
#include <signal_tzm/format.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wformat-overflow"
#endif

namespace {

std::mt19937_64 random_bits(20261121);

int Below(int n) { return static_cast<int>(random_bits() % static_cast<uint64_t>(n)); }

std::string Spec(const std::vector<const char*>& lengths, const char* letters) {
  std::string spec = "<%";
  for (char flag : std::string("-+ #0"))
    if (Below(4) == 0) spec += flag;
  if (Below(2) == 0) spec += std::to_string(Below(30));
  if (Below(2) == 0) spec += "." + (Below(5) == 0 ? "" : std::to_string(Below(Below(10) == 0 ? 400 : 25)));
  spec += lengths[random_bits() % lengths.size()];
  return spec + letters[random_bits() % std::strlen(letters)] + ">";
}

// glibc drops digits of %#g where rounding gains a place: 999999.5 should be 1.00000e+06.
bool SystemIsWrong(const std::string& format) {
  return format.find('#') != std::string::npos && format.find_first_of("gG") != std::string::npos;
}

template <class T>
void ExpectLikeSystem(const std::string& format, T value) {
  static char expected[24000], actual[24000];
  const int length = std::snprintf(expected, sizeof expected, format.c_str(), value);
  ASSERT_EQ(length, sprintf_s(actual, sizeof actual, format.c_str(), value)) << format << " " << expected;
  ASSERT_STREQ(expected, actual) << format;
  // The exact room is enough, one byte less is not, and nothing beyond it is touched.
  const size_t room = static_cast<size_t>(length) + 1;
  std::memset(actual, 'x', room + 1);
  ASSERT_EQ(length, sprintf_s(actual, room, format.c_str(), value)) << format;
  ASSERT_EQ('x', actual[room]);
  if (room < 2) return;
  ASSERT_EQ(-1, sprintf_s(actual, room - 1, format.c_str(), value)) << format;
  ASSERT_STREQ("", actual);
}

TEST(Format, IntegersLikeSystem) {
  for (int i = 0; i < 20000; ++i) {
    const uint64_t bits = Below(8) == 0 ? 0 : random_bits() >> Below(64);
    ExpectLikeSystem(Spec({"", "h", "hh"}, "diuoxX"), static_cast<int>(bits));
    ExpectLikeSystem(Spec({"l", "ll", "j", "z", "t"}, "diuoxX"), static_cast<int64_t>(Below(2) == 0 ? bits : -bits));
  }
}

TEST(Format, FloatingLikeSystem) {
  const double special[] = {0.0, -0.0, INFINITY, -INFINITY, std::nan(""), 0.5, 1.5, 2.5, 9.5, 0.05, 99.95, 9.9999995,
                            999999.5, 1e-5, 0.0001, DBL_MAX, DBL_MIN, DBL_TRUE_MIN, 1e15, 123456789.0};
  for (int i = 0; i < 20000; ++i) {
    double value;
    const uint64_t bits = random_bits();
    if (i % 3 == 0) std::memcpy(&value, &bits, sizeof value);
    else if (i % 3 == 1) value = std::ldexp(static_cast<double>(Below(2000001) - 1000000), Below(40) - 30);
    else value = special[static_cast<size_t>(Below(sizeof special / sizeof *special))];
    const std::string format = Spec({"", "l"}, "eEfFgGaA");
    if (!SystemIsWrong(format)) ExpectLikeSystem(format, value);
    const long double wide = std::ldexp(static_cast<long double>(bits) * (Below(2) ? 1 : -1), Below(400) - 230);
    const std::string longFormat = Spec({"L"}, "eEfFgGaA");
    if (!SystemIsWrong(longFormat)) ExpectLikeSystem(longFormat, i % 3 == 2 ? static_cast<long double>(value) : wide);
  }
  char text[16];
  EXPECT_EQ(11, sprintf_s(text, sizeof text, "%#g", 999999.5));
  EXPECT_STREQ("1.00000e+06", text);
  for (long double value : {LDBL_MAX, LDBL_MIN, LDBL_TRUE_MIN, -LDBL_MAX})
    for (const char* format : {"%Lf", "%.30Le", "%La", "%.17000Lf", "%Lg"}) ExpectLikeSystem(format, value);
}

TEST(Format, TextLikeSystem) {
  for (int i = 0; i < 2000; ++i) {
    ExpectLikeSystem(Spec({""}, "s"), "some text");
    const std::string spec = Spec({""}, "c");
    if (spec.find('.') == std::string::npos) ExpectLikeSystem(spec, 'a' + i % 26);
  }
  ExpectLikeSystem("%p", static_cast<void*>(nullptr));
  ExpectLikeSystem("%20p|", static_cast<void*>(&random_bits));
  ExpectLikeSystem("100%% of %d", 7);
  char expected[64], actual[64];
  std::snprintf(expected, sizeof expected, "%*d|%-*.*f|%.*s", -6, 42, 9, 3, 2.5, -1, "whole");
  sprintf_s(actual, sizeof actual, "%*d|%-*.*f|%.*s", -6, 42, 9, 3, 2.5, -1, "whole");
  EXPECT_STREQ(expected, actual);
}

TEST(Format, Refusals) {
  char text[16];
  int count = 5;
  const auto refused = [&](const char* format, auto... arguments) {
    std::strcpy(text, "before");
    return sprintf_s(text, sizeof text, format, arguments...) == -1 && text[0] == 0;
  };
  EXPECT_TRUE(refused("%n", &count));
  EXPECT_EQ(5, count);
  EXPECT_TRUE(refused("%s", static_cast<const char*>(nullptr)));
  EXPECT_TRUE(refused("%ls", L"wide"));
  for (const char* format : {"%y", "%", "%lc", "%hp", "%Ld", "%2147483647d", "%99999999999d"})
    EXPECT_TRUE(refused(format, 1)) << format;
  for (const char* format : {"%.2147483647f", "%hf", "%lle"}) EXPECT_TRUE(refused(format, 1.0)) << format;
  EXPECT_TRUE(refused("%*d", INT_MIN, 1));
  EXPECT_TRUE(refused(nullptr));
  EXPECT_EQ(-1, sprintf_s(nullptr, 16, "a"));
  EXPECT_EQ(-1, sprintf_s(text, 0, "a"));
}

}  // namespace

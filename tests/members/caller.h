// Runs a row of the table: makes its inputs, places its arrays, calls it, and holds what came out.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "members.h"
#include "support/guarded.h"

namespace tzm_test {

// Digests use the scales up to 5e-324.
inline constexpr size_t kDigestScales = 19;
inline constexpr double kScales[] = {1.0, 4.0, 0.25, 2.0, 0.5, 3.0, 0.3, 1024.0, 0x1p-10, 0x1p16, 0x1p-16,
                                     0x1p20, 0x1p31, 0x1p33, 0x1p-40, 0x1p62, 1e300, 1e-300, 5e-324,
                                     1.999, 0.6, 8.0, 0.125, 0x1p-4, 0x1p7, 0x1p-7, 0x1p8, 0x1p-8, 0x1p9, 0x1p-9,
                                     0x1p-13, 0x1p14, 0x1p15, 0x1p-15, 0x1p17, 0x1p-17, 0x1p22, 0x1p23, 0x1p30,
                                     0x1p-30, 0x1p-31, 0x1p32, 0x1p-33, 0x1p40, 0x1p-62, 0x1p63, 0x1p64, 0x1p-64,
                                     0x1p65, 0x1p-65, 0x1p-127, 0x1p149, 0x1p160, 0x1p-160, 0x1p300, 0x1p-300,
                                     0x1p1023};

// A part of that kind; integers saturate.
void StorePart(Kind kind, void* to, double number);

struct Setting {
  int32_t len = 0;
  Variety variety = Variety::kModerate;
  size_t constants = 0;  // which set
  size_t scale = 0;      // index into kScales; further scales of the call take the next ones
  Place place = Place::kEnd;
  int alias = -1;        // argument number of the source that is also the destination
  uint64_t seed = 0;     // other inputs than the usual ones, and constants unless the row has its own
  const Case* given = nullptr;  // inputs of a test's own, and
  int exponent = 0;             // of the scale with them
};

// A short text of a setting for messages.
std::string Describe(const Member& member, const Setting& setting);

class Caller {
 public:
  Caller(const Member& member, int32_t max_len);

  // Fills and places all arguments; then `values` may be spoilt before Invoke.
  void Prepare(const Setting& setting);
  OrvaStatus Invoke();
  OrvaStatus Run(const Setting& setting) {
    Prepare(setting);
    return Invoke();
  }
  void SetConstants(const std::vector<double>& set);
  // What Invoke had to make of what was prepared, by the row's oracle: the outputs, and the status.
  OrvaStatus Expect(Outputs& outputs) const;

  // Whether every array (or, of all but the outputs, each) still holds what Prepare put there.
  bool Untouched(bool outputs_too) const;
  // The outputs of the last call: destinations, then results, in the order of the arguments.
  Outputs Results() const;
  // Number and type of the elements of each.
  std::vector<Argument> OutputArguments() const;
  static size_t Elements(const Argument& argument, int32_t len) {
    return argument.role == Role::kResult || argument.role == Role::kInput ? 1 : static_cast<size_t>(len);
  }

  std::vector<Value> values;

 private:
  struct Array {
    std::unique_ptr<GuardedBytes> bytes;
    uint64_t seed = 0;                       // 0 for one that holds the start value
    std::vector<unsigned char> contents[3];  // by variety, made when it is first asked for
    std::vector<unsigned char> before;       // what Prepare put there
    void* data = nullptr;
  };
  const std::vector<unsigned char>& Contents(size_t argument, Variety variety);

  const Member& member_;
  const int32_t max_len_;
  std::vector<Array> arrays_;
  Setting setting_;
};

}  // namespace tzm_test

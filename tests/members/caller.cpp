#include "caller.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace tzm_test {

namespace {

bool IsPointer(Role role) { return role != Role::kLength && role != Role::kConstant && role != Role::kScale; }
bool IsOutput(Role role) { return role == Role::kDst || role == Role::kSrcDst || role == Role::kResult; }

}  // namespace

void StorePart(Kind kind, void* to, double number) {
  Visit(kind, [=]<class T>(T value) {
    if constexpr (std::is_integral_v<T>) value = RoundSaturate<T>(number);
    else value = static_cast<T>(number);
    std::memcpy(to, &value, sizeof value);
  });
}

std::string Describe(const Member& member, const Setting& s) {
  std::string text = member.name;
  for (auto [what, number] : {std::pair<const char*, int64_t>{" seed ", s.seed}, {" length ", s.len},
                              {" variety ", int(s.variety)}, {" constants ", s.constants}, {" scale ", s.scale},
                              {" place ", int(s.place)}, {" alias ", s.alias}})
    text += what + std::to_string(number);
  return text;
}

Caller::Caller(const Member& member, int32_t max_len)
    : values(member.arguments.size()), member_(member), max_len_(max_len), arrays_(member.arguments.size()) {
  uint64_t source = 0;  // sources of the same order number have the same contents in every member
  for (size_t i = 0; i < arrays_.size(); ++i) {
    const Argument& argument = member.arguments[i];
    if (!IsPointer(argument.role)) continue;
    arrays_[i].bytes = std::make_unique<GuardedBytes>(Elements(argument, max_len) * argument.sample.Size());
    const Role role = argument.role;
    if (role == Role::kSource || role == Role::kMask || role == Role::kSrcDst) arrays_[i].seed = ++source;
  }
}

const std::vector<unsigned char>& Caller::Contents(size_t i, Variety variety) {
  const Argument& argument = member_.arguments[i];
  auto& contents = arrays_[i].contents[static_cast<size_t>(variety)];
  if (!contents.empty()) return contents;
  const size_t n = Elements(argument, max_len_);
  contents.resize(n * argument.sample.Size());
  if (arrays_[i].seed != 0) {
    Random random(arrays_[i].seed * 16 + static_cast<uint64_t>(variety));
    Fill(random, argument.sample, variety, contents.data(), n);
    if (argument.role == Role::kMask)
      for (auto& byte : contents) byte = byte % 3 == 0 ? byte : 0;
  } else {
    for (size_t at = 0; at < contents.size(); at += argument.sample.PartSize())
      StorePart(argument.sample.kind, contents.data() + at, member_.start);
  }
  return contents;
}

void Caller::Prepare(const Setting& setting) {
  setting_ = setting;
  Random random(setting.seed);
  size_t number = 0, source = 0, scale = setting.scale;
  for (size_t i = 0; i < arrays_.size(); ++i) {
    const Argument& argument = member_.arguments[i];
    if (argument.role == Role::kLength) {
      values[i].Set(setting.len);
    } else if (argument.role == Role::kScale) {
      values[i].Set(setting.given ? std::ldexp(1.0, setting.exponent) : kScales[scale++ % std::size(kScales)]);
    } else if (argument.role == Role::kConstant && setting.seed != 0 && member_.constants.empty()) {
      Fill(random, argument.sample, setting.variety, values[i].bytes, 1);
    } else if (argument.role == Role::kConstant) {
      for (size_t part = 0; part < argument.sample.parts; ++part)
        StorePart(argument.sample.kind, values[i].bytes + part * argument.sample.PartSize(),
                  member_.ConstantAt(setting.constants, number++, argument.sample));
    } else {
      Array& array = arrays_[i];
      const size_t size = Elements(argument, std::max(setting.len, 0)) * argument.sample.Size();
      const bool aliased = setting.alias >= 0 && argument.role == Role::kDst;
      const bool own = array.seed != 0 || argument.role == Role::kInput;
      if (setting.given && own && source < setting.given->sources.size()) {
        array.before = setting.given->sources[source++];
      } else {
        const auto& from = Contents(aliased ? static_cast<size_t>(setting.alias) : i, setting.variety);
        array.before.assign(from.begin(), from.begin() + static_cast<ptrdiff_t>(size));
      }
      if (setting.seed != 0 && array.seed != 0 && argument.role != Role::kMask)
        Fill(random, argument.sample, setting.variety, array.before.data(), Elements(argument, setting.len));
      array.data = array.bytes->At(setting.place, size);
      std::copy(array.before.begin(), array.before.end(), static_cast<unsigned char*>(array.data));
      values[i].Set(array.data);
      if (aliased) values[static_cast<size_t>(setting.alias)].Set(array.data);
      if (setting.given && setting.given->no_mask && argument.role == Role::kMask) values[i].Set<void*>(nullptr);
    }
  }
  if (setting.given && !setting.given->constants.empty()) SetConstants(setting.given->constants);
}

OrvaStatus Caller::Expect(Outputs& outputs) const {
  outputs.clear();
  for (size_t i = 0; i < arrays_.size(); ++i)
    if (IsOutput(member_.arguments[i].role)) outputs.push_back(arrays_[i].before);
  const Outputs before = outputs;
  const OrvaStatus status = member_.oracle(values.data(), Results(), outputs);
  if (!IsSuccess(status)) outputs = before;
  return status;
}

void Caller::SetConstants(const std::vector<double>& set) {
  size_t number = 0;
  for (size_t i = 0; i < arrays_.size(); ++i) {
    const Argument& argument = member_.arguments[i];
    if (argument.role != Role::kConstant) continue;
    for (size_t part = 0; part < argument.sample.parts; ++part)
      StorePart(argument.sample.kind, values[i].bytes + part * argument.sample.PartSize(), set.at(number++));
  }
}

OrvaStatus Caller::Invoke() {
  SetCallUnderTest(Describe(member_, setting_));
  return member_.invoke(member_.function, values.data());
}

bool Caller::Untouched(bool outputs_too) const {
  for (size_t i = 0; i < arrays_.size(); ++i) {
    if (!arrays_[i].bytes || (IsOutput(member_.arguments[i].role) && !outputs_too)) continue;
    const auto& before = arrays_[i].before;
    if (!std::equal(before.begin(), before.end(), static_cast<const unsigned char*>(arrays_[i].data))) return false;
  }
  return true;
}

std::vector<Argument> Caller::OutputArguments() const {
  std::vector<Argument> outputs;
  for (const Argument& argument : member_.arguments)
    if (IsOutput(argument.role)) outputs.push_back(argument);
  return outputs;
}

Outputs Caller::Results() const {
  Outputs outputs;
  for (size_t i = 0; i < arrays_.size(); ++i) {
    if (!IsOutput(member_.arguments[i].role)) continue;
    const auto* data = static_cast<const unsigned char*>(arrays_[i].data);
    outputs.emplace_back(data, data + arrays_[i].before.size());
  }
  return outputs;
}

}  // namespace tzm_test

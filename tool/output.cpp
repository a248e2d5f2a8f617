// Results on standard output: text, CSV, JSON.
#include "output.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "text.h"

namespace tzm {
namespace {

// Nine digits: enough to give every binary32 back.
std::string Number(double value) { return Format("%.9g", value); }

std::string JsonNumber(double value) { return std::isfinite(value) ? Number(value) : "null"; }

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : CleanText(text)) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

bool HasWords(const Column& column) { return !column.words.empty(); }

size_t Rows(const Table& table) {
  if (table.empty()) return 0;
  return HasWords(table.front()) ? table.front().words.size() : table.front().values.size();
}

std::string ShownCell(const Column& c, size_t row) {
  return HasWords(c) ? CleanText(c.words[row]) : Format("%.*f", c.decimals, c.values[row]);
}

std::string JsonCell(const Column& c, size_t row) {
  return HasWords(c) ? Quoted(c.words[row]) : JsonNumber(c.values[row]);
}

}  // namespace

void PrintText(const Table& table) {
  std::vector<size_t> widths;
  for (const Column& c : table) {
    size_t width = c.heading.size();
    for (size_t row = 0; row < Rows(table); ++row) width = std::max(width, ShownCell(c, row).size());
    widths.push_back(width);
    std::printf("  %*s", int(width), c.heading.c_str());
  }
  std::printf("\n");
  for (size_t row = 0; row < Rows(table); ++row) {
    for (size_t i = 0; i < table.size(); ++i) {
      std::printf("  %*s", int(widths[i]), ShownCell(table[i], row).c_str());
    }
    std::printf("\n");
  }
}

void PrintCsv(const Table& table) {
  for (size_t i = 0; i < table.size(); ++i) std::printf("%s%s", i ? "," : "", table[i].name.c_str());
  std::printf("\n");
  for (size_t row = 0; row < Rows(table); ++row) {
    for (size_t i = 0; i < table.size(); ++i) {
      const Column& c = table[i];
      std::printf("%s%s", i ? "," : "", HasWords(c) ? c.words[row].c_str() : Number(c.values[row]).c_str());
    }
    std::printf("\n");
  }
}

void JsonObject::AddRaw(const std::string& name, const std::string& value) {
  members_ += (members_.empty() ? "" : ", ") + Quoted(name) + ": " + value;
}

void JsonObject::Add(const char* name, const std::string& text) { AddRaw(name, Quoted(text)); }

void JsonObject::Add(const char* name, double number) { AddRaw(name, JsonNumber(number)); }

void JsonObject::Add(const char* name, const JsonObject& object) { AddRaw(name, "{" + object.members_ + "}"); }

void JsonObject::AddRows(const char* name, const Table& table) {
  std::string array;
  for (size_t row = 0; row < Rows(table); ++row) {
    JsonObject object;
    for (const Column& c : table) object.AddRaw(c.name, JsonCell(c, row));
    array += (row ? ", {" : "{") + object.members_ + "}";
  }
  AddRaw(name, "[" + array + "]");
}

void JsonObject::AddColumns(const char* name, const Table& table) {
  JsonObject object;
  for (const Column& c : table) {
    std::string array;
    for (size_t row = 0; row < Rows(table); ++row) array += (row ? ", " : "") + JsonCell(c, row);
    object.AddRaw(c.name, "[" + array + "]");
  }
  Add(name, object);
}

void JsonObject::Print() const { std::printf("{%s}\n", members_.c_str()); }

}  // namespace tzm

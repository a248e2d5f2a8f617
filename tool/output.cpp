// Results on standard output: text, CSV, JSON.
#include "output.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>

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

namespace {

std::string Npy(const std::string& type, const std::string& shape, const std::vector<double>& values) {
  std::string header = "{'descr': " + type + ", 'fortran_order': False, 'shape': (" + shape + "), }";
  constexpr size_t kPreamble = 12, kAlignment = 64;
  header.append(kAlignment - (kPreamble + header.size() + 1) % kAlignment, ' ').append("\n");
  std::string bytes("\x93NUMPY\x02\x00", 8);
  for (int i = 0; i < 4; ++i) bytes += char(header.size() >> 8 * i & 0xFF);
  bytes += header;
  return bytes.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(double));
}

template <class T>
std::string JsonArray(const T& items) {
  std::string array;
  for (const std::string& item : items) array.append(array.empty() ? "" : ", ").append(item);
  return "[" + array + "]";
}

std::vector<std::string> JsonNumbers(std::span<const double> numbers) {
  std::vector<std::string> texts;
  for (const double number : numbers) texts.push_back(JsonNumber(number));
  return texts;
}

}  // namespace

std::string NpyTable(const Table& table) {
  std::string fields;
  for (const Column& c : table) fields += "('" + c.name + "', '<f8'), ";
  std::vector<double> values;
  for (size_t row = 0; row < Rows(table); ++row) {
    for (const Column& c : table) values.push_back(c.values[row]);
  }
  return Npy("[" + fields + "]", Format("%zu,", Rows(table)), values);
}

std::string NpyArray(const std::vector<size_t>& shape, const std::vector<double>& values) {
  std::string lengths;
  for (const size_t length : shape) lengths += Format("%zu, ", length);
  return Npy("'<f8'", lengths, values);
}

void JsonObject::AddRaw(const std::string& name, const std::string& value) {
  members_ += (members_.empty() ? "" : ", ") + Quoted(name) + ": " + value;
}

void JsonObject::Add(const char* name, const std::string& text) { AddRaw(name, Quoted(text)); }

void JsonObject::Add(const char* name, double number) { AddRaw(name, JsonNumber(number)); }

void JsonObject::Add(const char* name, const JsonObject& object) { AddRaw(name, object.Text()); }

void JsonObject::AddObjects(const char* name, const std::vector<JsonObject>& objects) {
  std::vector<std::string> texts;
  for (const JsonObject& object : objects) texts.push_back(object.Text());
  AddRaw(name, JsonArray(texts));
}

void JsonObject::AddRows(const char* name, const Table& table) {
  std::vector<JsonObject> rows(Rows(table));
  for (size_t row = 0; row < rows.size(); ++row) {
    for (const Column& c : table) rows[row].AddRaw(c.name, JsonCell(c, row));
  }
  AddObjects(name, rows);
}

void JsonObject::AddColumns(const char* name, const Table& table) {
  JsonObject object;
  for (const Column& c : table) object.AddRaw(c.name, JsonArray(JsonNumbers(c.values)));
  Add(name, object);
}

void JsonObject::AddArray(const char* name, const std::vector<double>& numbers) {
  AddRaw(name, JsonArray(JsonNumbers(numbers)));
}

void JsonObject::AddMatrix(const char* name, const std::vector<double>& numbers, size_t width) {
  std::vector<std::string> rows;
  for (size_t at = 0; at < numbers.size(); at += width) {
    rows.push_back(JsonArray(JsonNumbers(std::span(numbers).subspan(at, width))));
  }
  AddRaw(name, JsonArray(rows));
}

std::string JsonObject::Text() const { return "{" + members_ + "}"; }

void JsonObject::Print() const { std::puts(Text().c_str()); }

}  // namespace tzm

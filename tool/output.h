// Results on standard output: one table, as text for people, as CSV, or inside a JSON object.
#ifndef TZM_TOOL_OUTPUT_H
#define TZM_TOOL_OUTPUT_H

#include <string>
#include <vector>

namespace tzm {

struct Column {
  std::string name;     // for programs: lower case, with the unit
  std::string heading;  // for people
  int decimals;         // for people; programs get every digit that counts
  std::vector<double> values;
  std::vector<std::string> words = {};  // in place of values, where the cells are words
};

/** Columns of equal length. */
using Table = std::vector<Column>;

void PrintText(const Table& table);
void PrintCsv(const Table& table);

/** The bytes of an NPY file: a one-dimensional array with a named field of binary64 for each column. */
std::string NpyTable(const Table& table);
/** The same of a plain array of binary64 of any shape, the last index changing fastest. */
std::string NpyArray(const std::vector<size_t>& shape, const std::vector<double>& values);

/** A JSON object, its members in the order they were added. Numbers that JSON cannot hold become null. */
class JsonObject {
 public:
  void Add(const char* name, const std::string& text);
  void Add(const char* name, double number);
  void Add(const char* name, const JsonObject& object);
  /** Rows as an array of objects. */
  void AddRows(const char* name, const Table& table);
  void AddArray(const char* name, const std::vector<double>& numbers);
  /** An array of arrays of `width` numbers each. */
  void AddMatrix(const char* name, const std::vector<double>& numbers, size_t width);
  void AddObjects(const char* name, const std::vector<JsonObject>& objects);
  /** Columns as an object of arrays: for long tables. */
  void AddColumns(const char* name, const Table& table);
  void Print() const;

 private:
  void AddRaw(const std::string& name, const std::string& value);
  std::string Text() const;

  std::string members_;
};

}  // namespace tzm

#endif

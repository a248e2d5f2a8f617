// A file that is being made. It stands under its name only when it is complete: until then, and after a failure or
// an interrupt, a file of that name is as it was, and nothing is left beside it.
#ifndef TZM_TOOL_NEW_FILE_H
#define TZM_TOOL_NEW_FILE_H

#include <string>

namespace tzm {

class NewFile {
 public:
  /** Makes the empty part, beside the place where the file shall stand. Throws Failure. */
  explicit NewFile(const std::string& path);
  NewFile(const NewFile&) = delete;
  ~NewFile();

  /** What to write to. */
  const std::string& Part() const { return part_; }
  /** Gives the part the file's name. */
  void Complete();
  /** Throws the Failure that says why the file cannot be written. */
  [[noreturn]] void Fail(const std::string& reason) const;

 private:
  std::string path_, target_, part_;  // as it was given; what it names; beside that
};

/** Makes a file of the bytes. Throws Failure. */
void WriteFile(const std::string& path, const std::string& bytes);

}  // namespace tzm

#endif

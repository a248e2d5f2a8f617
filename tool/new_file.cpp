// Files that stand under their names only when complete.
#include "new_file.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "command.h"
#include "text.h"

namespace tzm {
namespace {

// The name of the part in the making, for the signals that end a program in the midst of its work. One at a time.
char g_part[4096];

extern "C" void RemovePartAndEnd(int signal) {
  unlink(g_part);
  raise(signal);  // as it would have without us: the handler is gone once it has been called
}

void OnSignals(void (*handler)(int)) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESETHAND;
    struct sigaction old;
    // One that was ignored (nohup) stays so.
    if (sigaction(signal, nullptr, &old) == 0 && old.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
}

}  // namespace

NewFile::NewFile(const std::string& path) : path_(path), target_(path) {
  std::error_code ignored;  // a file that is not there is none of another kind either
  if (std::filesystem::exists(path, ignored)) {
    if (!std::filesystem::is_regular_file(path, ignored)) Fail("it is no plain file");
    if (access(path.c_str(), W_OK) != 0) Fail(std::strerror(errno));
    target_ = std::filesystem::canonical(path, ignored).string();  // a link stays, and what it names is replaced
  }
  part_ = Format("%s.%ld.part", target_.c_str(), static_cast<long>(getpid()));
  if (part_.size() >= sizeof g_part) Fail(std::strerror(ENAMETOOLONG));
  std::signal(SIGXFSZ, SIG_IGN);  // the write that is too large fails instead, and says so
  std::strcpy(g_part, part_.c_str());
  OnSignals(RemovePartAndEnd);
  std::FILE* file = std::fopen(part_.c_str(), "wbx");  // none that is there already
  if (!file) Fail(std::strerror(errno));
  std::fclose(file);
  const auto old = std::filesystem::status(target_, ignored);  // what only its owner could read stays so
  if (std::filesystem::exists(old)) std::filesystem::permissions(part_, old.permissions(), ignored);
}

NewFile::~NewFile() {
  if (!part_.empty()) std::remove(part_.c_str());
  OnSignals(SIG_DFL);
}

void NewFile::Complete() {
  if (std::rename(part_.c_str(), target_.c_str()) != 0) Fail(std::strerror(errno));
  part_.clear();
}

void NewFile::Fail(const std::string& reason) const {
  throw Failure(Format("cannot write '%s': %s", path_.c_str(), reason.c_str()));
}

void WriteFile(const std::string& path, const std::string& bytes) {
  NewFile place(path);
  std::FILE* file = std::fopen(place.Part().c_str(), "wb");
  bool good = file && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (file && std::fclose(file) != 0) good = false;
  if (!good) place.Fail(std::strerror(errno));
  place.Complete();
}

}  // namespace tzm

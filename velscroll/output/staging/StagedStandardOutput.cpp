#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>
#include <vector>

#include <velscroll/output/staging/StagedStandardOutput.h>
#include <velscroll/terminal/Failure.h>
#include <velscroll/terminal/Interruption.h>

namespace ScrollingCapture::Program {
namespace {

void RequireNoTerminal(const std::string& content) {
  if (::isatty(STDOUT_FILENO) != 0) {
    throw BadInput(content +
                   " would be written to the terminal; redirect the output, or name a file");
  }
}

std::string TemporaryFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return error ? "/tmp" : folder.string();
}

HiddenFile MakeWaitingFile(const std::string& folder) {
  try {
    return HiddenFile(folder);
  } catch (const std::system_error& error) {
    throw BadInput("cannot write into the temporary folder " + Quoted(folder) + ": " +
                   SystemMessage(error.code().value()) + "; name another one with TMPDIR");
  }
}

void WriteToStandardOutput(const unsigned char* bytes, size_t length) {
  while (length > 0) {
    StopIfInterrupted();
    const ssize_t written = ::write(STDOUT_FILENO, bytes, length);
    if (written < 0 && errno != EINTR) {
      throw Failed("cannot write to standard output: " + SystemMessage(errno) +
                   "; write to a file instead");
    }
    const size_t done = written < 0 ? 0 : static_cast<size_t>(written);
    bytes += done;
    length -= done;
  }
}

}  // namespace

StagedStandardOutput::StagedStandardOutput(const std::string& content)
    : folder(TemporaryFolder()), waiting(MakeWaitingFile(folder)) {
  RequireNoTerminal(content);
}

void StagedStandardOutput::Store(std::uint64_t offset, const void* bytes, size_t length) {
  try {
    waiting.WriteAt(offset, bytes, length);
  } catch (const std::system_error& error) {
    throw Failed("cannot write into the temporary folder " + Quoted(folder) + ": " +
                 SystemMessage(error.code().value()) +
                 "; make room, or name another one with TMPDIR");
  }
}

size_t StagedStandardOutput::Read(std::uint64_t offset, void* bytes, size_t length) const {
  try {
    return waiting.ReadAt(offset, bytes, length);
  } catch (const std::system_error& error) {
    throw Failed("cannot read from the temporary folder " + Quoted(folder) + ": " +
                 SystemMessage(error.code().value()) + "; name another one with TMPDIR");
  }
}

void StagedStandardOutput::Commit() {
  constexpr size_t PieceSize = size_t{1} << 20U;
  std::vector<unsigned char> piece(PieceSize);
  std::uint64_t offset = 0;
  while (offset < Size()) {
    const size_t got = Read(offset, piece.data(), piece.size());
    if (got == 0) {
      throw Failed("the file in the temporary folder " + Quoted(folder) +
                   " was cut short by somebody else");
    }
    WriteToStandardOutput(piece.data(), got);
    offset += got;
  }
}

}  // namespace ScrollingCapture::Program

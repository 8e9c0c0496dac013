#pragma once

#include <string>

#include <CLI/CLI.hpp>
#include <velscroll/arguments/ResultArguments.h>

namespace ScrollingCapture::Program {

/// The options that say what is made of captures, wherever those come from. Each Add operation adds
/// a group of them, in the order in which help shall tell them.
class ResultOptions {
 public:
  /// @param app       gets the options
  /// @param arguments get their values; both must outlive this
  ResultOptions(CLI::App& app, ResultArguments& arguments);

  void AddOutput();
  void AddOrientation();
  void AddThreads();
  void AddFixedParts();
  void AddStrict();
  void AddEncoding();
  void AddMemory();
  void AddPreview();
  void AddReport();
  void AddQuiet();

  bool FixedPartsAreGiven() const { return fixedOption->count() > 0; }

  /// Turns what was typed into arguments. Throws BadInput.
  void Check();

 private:
  void CheckOutput();

  CLI::App& app;
  ResultArguments& arguments;
  std::string orientation;
  std::string fixedParts;
  CLI::Option* fixedOption = nullptr;
  std::string threads;
  std::string memoryLimit;
  CLI::Option* memoryLimitOption = nullptr;
  std::string previewSize = "250x250";
  std::string split;
  CLI::Option* splitOption = nullptr;
  std::string background;
  CLI::Option* backgroundOption = nullptr;
  std::string jpegQuality;
  std::string pngLevel;
  CLI::Option* quietFlag = nullptr;
};

/// Reads a command line into the variables of its options. Throws BadInput for wrong usage.
/// @param help how to ask for help, such as "velscroll --help"
/// @return false when help or version were asked for; they have then been printed
bool ParseCommandLine(CLI::App& app, int argc, const char* const* argv, const std::string& help);

}  // namespace ScrollingCapture::Program

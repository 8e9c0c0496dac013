#include <velscroll/record/RecordCommand.h>

namespace ScrollingCapture::Program {

ExitStatus RunRecordCommand(const RecordArguments& /*arguments*/) {
  throw Failed("this velscroll was built without live capturing, which takes XCB");
}

}  // namespace ScrollingCapture::Program

#include "reports/process_recorder.h"

namespace zov {
namespace {
ProcessRecorder* installed = nullptr;
}  // namespace

void installProcessRecorder(ProcessRecorder* recorder) {
    installed = recorder;
}

ProcessRecorder* processRecorder() {
    return installed;
}

}  // namespace zov

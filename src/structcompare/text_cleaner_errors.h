// How the text cleaners fail: a plain box, and what stands of the text is taken.
#pragma once

#include "core/error_report.h"

namespace zov {

template <typename Body>
void boxOnError(const char* routine, Body body) {
    try {
        body();
    } catch (...) {
        showCaughtErrorTitled(routine);
    }
}

}  // namespace zov

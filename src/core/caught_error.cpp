#include "core/caught_error.h"

#include "util/numbered_error.h"

#include <new>

namespace zov {

CaughtError caughtError() {
    try {
        throw;
    } catch (const NumberedError& error) {
        return {error.number, error.description};
    } catch (const std::bad_alloc&) {
        return {run_error::OutOfMemory, QStringLiteral("Out of memory")};
    } catch (const std::exception& error) {
        return {run_error::InternalError, QString::fromUtf8(error.what())};
    } catch (...) {
        return {run_error::InternalError, QStringLiteral("Internal error")};
    }
}

}  // namespace zov

#include "host/kit/ExceptionText.hpp"

namespace vigil {

std::string exceptionText(const std::exception_ptr& what) {
    try {
        if (what) std::rethrow_exception(what);
    } catch (const std::exception& known) {
        return known.what();
    } catch (...) {
        return "an exception of an unknown kind";
    }
    return "no exception";
}

}  // namespace vigil

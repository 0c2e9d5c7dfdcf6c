#include "host/runtime/ErrorTranslation.hpp"

#include <exception>

#include "host/foundation/Exceptions.hpp"

namespace korvex {
namespace {

constexpr const char* kNativeException = "KORVEX:runtime:nativeException";

}  // namespace

Error handledError() {
    try {
        throw;
    } catch (const Error& error) {
        return error;
    } catch (const foundation::core::except::HostError& error) {
        return {error.identifier(), error.text()};
    } catch (const std::exception& error) {
        return {kNativeException, error.what()};
    } catch (...) {
        return {kNativeException, "The library threw something that is not an exception."};
    }
}

}  // namespace korvex

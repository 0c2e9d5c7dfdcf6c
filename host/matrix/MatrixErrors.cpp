#include "host/matrix/MatrixErrors.hpp"

#include <exception>
#include <string>

namespace matrix::detail {

using foundation::core::except::Exception;

void error_maxlhs() {
    throw Exception<KORVEX::matrix::tooManyOutputs>();
}

void error_maxrhs() {
    throw Exception<KORVEX::matrix::tooManyInputs>();
}

void error_minrhs() {
    throw Exception<KORVEX::matrix::notEnoughInputs>();
}

void error_message(int number) {
    switch (number) {
        case 0:
            throw Exception<KORVEX::matrix::tooManyOutputs>();
        case 1:
            throw Exception<KORVEX::matrix::tooManyInputs>();
        case 2:
            throw Exception<KORVEX::matrix::notEnoughInputs>();
        case 3:
            throw Exception<KORVEX::matrix::invalidOutputCount>();
        default:
            throw Exception<KORVEX::matrix::unknownMessage>(std::to_string(number));
    }
}

void do_legacy_kx_error(const foundation::core::except::HostError& error) {
    error.raise();
    std::terminate();  // g++ does not see that a virtual function never returns
}

}  // namespace matrix::detail

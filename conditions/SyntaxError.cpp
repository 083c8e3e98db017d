#include "conditions/SyntaxError.hpp"

namespace vigil {

const char* problemName(SyntaxProblem problem) {
    switch (problem) {
        case SyntaxProblem::Unexpected:
            return "unexpected";
        case SyntaxProblem::NoMember:
            return "no member";
        case SyntaxProblem::ReservedKey:
            return "reserved key";
        case SyntaxProblem::BadNumber:
            return "bad number";
        case SyntaxProblem::NumberTooLarge:
            return "number too large";
        case SyntaxProblem::BadEscape:
            return "bad escape";
        case SyntaxProblem::UnterminatedText:
            return "unterminated text";
        case SyntaxProblem::TooDeep:
            return "too deep";
        case SyntaxProblem::TooLong:
            return "too long";
    }
    return "";
}

std::string SyntaxError::message() const {
    return "expected " + expected + " but found " + found;
}

}  // namespace vigil

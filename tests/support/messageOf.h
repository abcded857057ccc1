#pragma once

#include <stdexcept>
#include <string>

/** What a call says when it fails; "no failure" if it does not. */
template <class Call> std::string messageOf(const Call& i_call)
{
    try {
        i_call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no failure";
}

#pragma once

#include "runtimeerror.h"

// The number of the RuntimeError a call raised, -1 when it raised nothing.
template <typename Call> int raisedNumber(Call call)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        return error.number();
    }
    return -1;
}

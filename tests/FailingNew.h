#pragma once

/// While it lives, `new (std::nothrow) T[n]` anywhere in the process gives null.
struct FailingNew {
    FailingNew();
    ~FailingNew();
};

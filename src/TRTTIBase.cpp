#include "TRTTIBase.h"

bool TRTTIBase::IsDerived(char const* name)
{
    if (name == nullptr) {
        return false;
    }
    return base_strcmp(name, GetClassName()) == 0 || IsBaseClass(name);
}

char const* TRTTIBase::GetClassName() const
{
    return "TRTTIBase";
}

bool TRTTIBase::IsBaseClass(char const*)
{
    return false;
}

// Not strcmp itself: that promises only the sign, and callers get the difference.
int TRTTIBase::base_strcmp(char const* a, char const* b)
{
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return static_cast<unsigned char>(*a) - static_cast<unsigned char>(*b);
}

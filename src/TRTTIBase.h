#pragma once

#include "OrvoExport.h"

/// A run-time type check by name, for classes that report their own class name.
///
///     class TCircle : public TShape { // which derives from TRTTIBase in the same way
///     public:
///         char const* GetClassName() const override { return "TCircle"; }
///         bool IsBaseClass(char const* name) override
///         {
///             return base_strcmp(name, TShape::GetClassName()) == 0 || TShape::IsBaseClass(name);
///         }
///     };
///
/// IsBaseClass() asks the base by its qualified name, and never IsDerived(), which would ask the
/// object's own IsBaseClass() again, without end.
///
/// Objects are not deleted through this base: it has no virtual destructor, and clients depend
/// on its three virtual operations being the first. -Wnon-virtual-dtor warns of that, and GCC also
/// of every class that derives from it, whatever its own destructor: switch the warning off there.
class ORVO_EXPORT TRTTIBase
{
public:
    /// True if \a name is the name of the object's own, most derived class, or else if
    /// IsBaseClass() says so. False for null.
    virtual bool IsDerived(char const* name);

    /// The name of the class, here "TRTTIBase"; every derived class returns its own. The text
    /// lives as long as the process.
    virtual char const* GetClassName() const;

    /// True if \a name, which is not null, names a base of the class. Here false, whatever the
    /// name, "TRTTIBase" included; a derived class answers for its own bases.
    virtual bool IsBaseClass(char const* name);

    /// Compares two texts byte by byte, as the C library's strcmp: the difference of the first
    /// two bytes that differ, taken as unsigned, or 0. Neither may be null.
    static int base_strcmp(char const* a, char const* b);
};

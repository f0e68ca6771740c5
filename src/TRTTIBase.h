#pragma once

#include "OrvoExport.h"

/// A run-time type check by name, for classes that report their own class name.
///
///     class TShape : public TRTTIBase {
///     public:
///         char const* GetClassName() const override { return "TShape"; }
///         bool IsBaseClass(char const* name) override { return TRTTIBase::IsBaseClass(name); }
///     };
///
/// Objects are not deleted through this base: it has no virtual destructor, and clients depend
/// on its three virtual operations being the first.
class ORVO_EXPORT TRTTIBase
{
public:
    /// True if \a name is the name of the object's own, most derived class, or else if
    /// IsBaseClass() says so. False for null.
    virtual bool IsDerived(char const* name);

    /// The name of the class, here "TRTTIBase"; every derived class returns its own. The text
    /// lives as long as the process.
    virtual char const* GetClassName() const;

    /// True if \a name names a base of the class. Here false, whatever the name, "TRTTIBase"
    /// included; a derived class answers for its own bases.
    virtual bool IsBaseClass(char const* name);

    /// Compares two texts byte by byte, as the C library's strcmp: the difference of the first
    /// two bytes that differ, taken as unsigned, or 0. Neither may be null.
    static int base_strcmp(char const* a, char const* b);
};

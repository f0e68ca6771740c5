#pragma once

#include "OrvoExport.h"

class DataOutputStream;

/// An object that writes itself into a data stream, so that `out << object` works.
///
/// There is no virtual destructor: Serialize() is the first virtual operation of the class, and
/// objects are not deleted through this interface.
class ORVO_EXPORT ISerializable
{
public:
    /// Writes the object to \a out. The stream adds nothing to what is written here.
    virtual void Serialize(DataOutputStream& out) const = 0;

protected:
    ~ISerializable() = default;
};

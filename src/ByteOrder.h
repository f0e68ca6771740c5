#pragma once

#include "OrvoExport.h"

/// \file
/// Integers in byte arrays, in network byte order: most significant byte first, whatever the
/// host. The functions are stateless and never fail; they do not check their pointers, and
/// the arrays need no alignment. `unsigned long` carries a 32-bit value on every host: upper
/// bits of an argument are ignored, those of a result are zero.

/// Writes \a v to p[0..1], high byte first.
ORVO_EXPORT void SetWORD(unsigned char* p, unsigned short v);

/// Writes the low 32 bits of \a v to p[0..3], most significant byte first.
ORVO_EXPORT void SetDWORD(unsigned char* p, unsigned long v);

/// Reads the 16-bit number at p[0..1] into \a v.
ORVO_EXPORT void GetWORD(unsigned short& v, unsigned char* p);

/// Reads the 32-bit number at p[0..3] into \a v.
ORVO_EXPORT void GetDWORD(unsigned long& v, unsigned char* p);

/// Reads p[0..7] as one 64-bit number into \a v. There is no counterpart that writes one:
/// 64-bit values are only ever received.
ORVO_EXPORT void GetLLONG(unsigned long long& v, unsigned char* p);

/// Returns \a v in network byte order: bytes swapped on a little-endian host, else unchanged.
/// @{
ORVO_EXPORT unsigned long HTONL(unsigned long v);
ORVO_EXPORT unsigned long NTOHL(unsigned long v);
ORVO_EXPORT unsigned short HTONS(unsigned short v);
ORVO_EXPORT unsigned short NTOHS(unsigned short v);
/// @}

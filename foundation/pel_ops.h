// Operations on whole pel buffers. Where two buffers meet, the work runs over the smaller of both sizes, from both upper left
// pels; an unbound buffer does nothing.
#pragma once

#include "foundation/pel_buffer.h"

#include <vector>

// Own pels of the window, with offset and transform kept. Null or exhausted pool: ordinary memory.
template <class T> ccPelBuffer<T> cfPelCopy(ccPelBuffer_const<T> const& source, ccPelRootPool* pool);
template <class T> void cfPelCopy(ccPelBuffer_const<T> const& source, ccPelBuffer<T> const& target);
// As cfPelCopy, and right for overlapping views of one root too.
template <class T> void cfPelMove(ccPelBuffer_const<T> const& source, ccPelBuffer<T> const& target);

// target[i] = table[source[i]], in place allowed. A table below 256 entries throws ccPelError::BadTable.
void cfPelMap(ccPelBuffer_const<unsigned char> const& source, std::vector<unsigned char> const& table,
              ccPelBuffer<unsigned char> const& target);

// The lowest and highest pel of the window; an unbound buffer gives 0, 0.
template <class T> void cfPelMinmax(ccPelBuffer_const<T> const& source, T& lowest, T& highest);

// Copies rows of bytes; nothing for a null pointer or an extent of 0 or less. Pitches are bytes from row to row.
void cf_PelCopyVid(void* target, long targetPitch, void const* source, long sourcePitch, long widthBytes, long height);

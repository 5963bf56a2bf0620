#pragma once

#include "api/qvexception.h"
#include "quvexnativenet.h"

/// The way back to the client: what it has registered, and the reports that go there. Nothing here raises; a callback
/// that does ends the process.
namespace quvex::binding {

/// Whatever the client makes of a text; null as long as it has registered nothing.
[[nodiscard]] QvString toClientString(const char* text);

/// A text argument was null.
void reportNullText() noexcept;
/// A failure of the library: the client gets a copy.
void report(const QVException& failure, const char* exported) noexcept;
void reportOutOfMemory(const char* exported) noexcept;
void reportUnknown(const char* exported) noexcept;

/// Frees an exception that the client has got.
void release(QVException* exception) noexcept;

}  // namespace quvex::binding

#pragma once

namespace bus {

/// Paths below this one belong to objects that were sent as values; their owner counts the references.
inline constexpr const char* kSentObjects = "/objects/";

inline constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
inline constexpr const char* kIntrospectable = "org.freedesktop.DBus.Introspectable";
inline constexpr const char* kPeer = "org.freedesktop.DBus.Peer";
/// Between the system's own processes: the sender no longer holds a reference to the object.
inline constexpr const char* kReferences = "org.vantorix.References";
inline constexpr const char* kRelease = "Release";
/// Several calls of one object in one message: a list of calls, each a list of the operation's name and its
/// arguments. The reply is a list of those that have failed, each a list of place, number and description.
inline constexpr const char* kCalls = "org.vantorix.Calls";
inline constexpr const char* kCallEach = "CallEach";

}  // namespace bus

#pragma once

#include <string>
#include <string_view>

namespace nv {

/// The part of a host's name that somebody has registered, by the public suffix list:
/// "example.co.uk" for "www.Example.co.uk". A host that has none (a number, a name of one label, a
/// public suffix, a text that is no name) stands for itself, in small letters; so does one of more
/// than 253 bytes. Points at the end go. `host` is UTF-8 or in the form of asciiDomain().
std::string registeredDomain(std::string_view host);

} // namespace nv

#pragma once

class moxPluginRegistry;

namespace mox::core {

/// The framework's library name in the registry's listing.
inline constexpr char const* kHostLibraryName = "CORE";

/// Enters the framework's own classes: documents, blobs, compression, files.
void registerHostClasses(moxPluginRegistry& registry);

}  // namespace mox::core

#include "core/app/host_classes.h"

#include <memory>

#include "core/app/host_container.h"
#include "core/documents/json_document.h"
#include "core/documents/xml_document.h"
#include "core/storage/adapter_blob.h"
#include "core/storage/blob.h"
#include "core/storage/file_operations.h"
#include "core/storage/z_compress.h"
#include "mox/core/registry.h"

namespace mox::core {

namespace {

template <class T>
void enter(moxPluginRegistry& registry, char const* registeredName) {
  registry.registerClass(std::make_unique<HostContainer<T>>(registeredName));
}

}  // namespace

void registerHostClasses(moxPluginRegistry& registry) {
  registry.setLibraryName(kHostLibraryName);
  enter<XmlDocument>(registry, "moxXMLDocument");
  enter<JsonDocument>(registry, "moxJsonDocument");
  enter<Blob>(registry, "moxBlob");
  enter<AdapterBlob>(registry, "moxAdapterBlob");
  enter<ZCompress>(registry, "moxZCompress");
  enter<ZCompress>(registry, "moxCompress");  // the name by which some readers of files ask for it
  enter<FileOperations>(registry, "moxFileOperations");
}

}  // namespace mox::core

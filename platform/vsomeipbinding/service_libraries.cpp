#include "platform/vsomeipbinding/service_libraries.h"

#include <dlfcn.h>
#include <link.h>
#include <string>
#include <vector>

namespace ara::com::internal::vsomeip::runtime {

namespace {

/// VSomeIPServiceMapping::GetMappingForServiceId, which a library that carries services defines, under the name that
/// the compiler gives it.
constexpr const char* kLookUpMapping =
    "_ZN3ara3com8internal7vsomeip7runtime21VSomeIPServiceMapping22GetMappingForServiceIdEt";

using LookUp = const VSomeIPServiceMapping::Mapping* (*)(std::uint16_t);

const VSomeIPServiceMapping::Mapping* LookUpIn(void* library, std::uint16_t araServiceId) {
  const auto lookUp = reinterpret_cast<LookUp>(::dlsym(library, kLookUpMapping));
  return lookUp != nullptr ? lookUp(araServiceId) : nullptr;
}

std::vector<std::string> LoadedLibraries() {
  std::vector<std::string> names;
  const auto add = [](dl_phdr_info* library, std::size_t, void* list) {
    static_cast<std::vector<std::string>*>(list)->emplace_back(library->dlpi_name);
    return 0;
  };
  ::dl_iterate_phdr(add, &names);
  return names;
}

}  // namespace

// Looked up in every call instead of being linked with: so this library can be loaded without any service, one that is
// loaded later is found too, and one that was never used can be unloaded.
const VSomeIPServiceMapping::Mapping* FindMapping(std::uint16_t araServiceId) {
  // What the program was linked with or has loaded for all to see. The loader keeps it for as long as this library.
  if (const auto* const mapping = LookUpIn(RTLD_DEFAULT, araServiceId)) {
    return mapping;
  }
  for (const std::string& name : LoadedLibraries()) {  // the others: what was loaded with RTLD_LOCAL
    void* const library = name.empty() ? nullptr : ::dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) {
      continue;
    }
    if (const auto* const mapping = LookUpIn(library, araServiceId)) {
      return mapping;  // and `library` stays open: the entry lies in it
    }
    ::dlclose(library);
  }
  return nullptr;
}

}  // namespace ara::com::internal::vsomeip::runtime

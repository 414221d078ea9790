# Writes SOURCE, which holds the text of each of MODELS as it stands:
#   cmake -DMODELS=FILE;FILE -DSOURCE=FILE -P EmbedModels.cmake
set(literals "")
foreach(model IN LISTS MODELS)
  file(READ "${model}" text)
  string(APPEND literals "      R\"tarn7_model(${text})tarn7_model\",\n")
endforeach()
file(WRITE "${SOURCE}" "#include \"tools/tarn7/model/interface_table.h\"

namespace tarn7::tool {

const std::vector<std::string_view>& BuiltInModels() {
  static const std::vector<std::string_view> models = {
${literals}  };
  return models;
}

}  // namespace tarn7::tool
")

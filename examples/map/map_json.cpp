// Prints the example map as JSON, in the form that the tool takes: map_json > map.json
//                                                                  tarn7 offer psd2 --values map.json

#include <iostream>

#include "examples/map/map.h"
#include "tools/tarn7/values/to_json.h"

int main() {
  using tarn7::tool::ToJson;
  const tarn7::tool::Json map = {
      {"linkLayerLongRange", ToJson(example_map::LinkLayerLongRange())},
      {"linkLayerShortRange", ToJson(example_map::LinkLayerShortRange())},
      {"laneLayer", ToJson(example_map::LaneLayer())},
      {"positioningObjectsLayer", ToJson(example_map::PositioningObjectsLayer())},
      {"egoPositionLayer", ToJson(example_map::EgoPositionLayer(0))},
      {"dynamicContentLayer", ToJson(example_map::DynamicContentLayer())},
      {"automatedParkingLayer", ToJson(example_map::AutomatedParkingLayer())},
      {"timezoneInformation", ToJson(example_map::TimezoneInformation())},
  };
  std::cout << tarn7::tool::ToText(map) << std::endl;
}

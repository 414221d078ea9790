// Prints the example map as JSON, in the form that the tool takes: map_json > map.json
//                                                                  tarn7 offer psd2 --values map.json

#include <iostream>
#include <string>

#include "examples/map/map.h"
#include "serialization/serializer.h"
#include "tools/tarn7/model/interface_table.h"
#include "tools/tarn7/values/payload_text.h"

namespace {

/// A member of the whole: the layer's name and its value.
template <typename Layers>
std::string Member(const tarn7::tool::InterfaceTable& interfaces, const std::string& field, const Layers& layers) {
  tarn7::tool::Payload payload;
  ara::com::internal::vsomeip::common::SequenceContainerSerializer<Layers>(layers).pushbackTo(payload);
  const tarn7::tool::ValueType& type = *interfaces.FindAddress("psd2/" + field).field->type;
  return '"' + field + "\":" + tarn7::tool::PayloadText(type, payload);
}

}  // namespace

int main() {
  const tarn7::tool::InterfaceTable interfaces;
  std::cout << '{' << Member(interfaces, "linkLayerLongRange", example_map::LinkLayerLongRange()) << ','
            << Member(interfaces, "linkLayerShortRange", example_map::LinkLayerShortRange()) << ','
            << Member(interfaces, "laneLayer", example_map::LaneLayer()) << ','
            << Member(interfaces, "positioningObjectsLayer", example_map::PositioningObjectsLayer()) << ','
            << Member(interfaces, "egoPositionLayer", example_map::EgoPositionLayer(0)) << ','
            << Member(interfaces, "dynamicContentLayer", example_map::DynamicContentLayer()) << ','
            << Member(interfaces, "automatedParkingLayer", example_map::AutomatedParkingLayer()) << ','
            << Member(interfaces, "timezoneInformation", example_map::TimezoneInformation()) << '}' << std::endl;
}

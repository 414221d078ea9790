#pragma once

#include <cstdint>
#include <vector>

#include "interfaces/psd2/psd2_skeleton.h"

/// A small map, as an application offers it through Psd2Skeleton. One function makes one layer.
///
/// A main road of 150 links, 100 metres each, leads straight east. It leaves a town after 50 links, and reaches the
/// next one after 130, where a parking garage stands at its end. After every third link a side road, a link of its
/// own, branches off to the north: 50 of them.
///
/// The interface model gives most members neither a name nor a unit. What they mean here is this example's choice,
/// said where a member is set. Members that the example has no use for stay absent, as in any record.
namespace example_map {

namespace datatypes = kro::services::psd2::datatypes;

constexpr std::uint32_t kMainRoadLinks = 150;
constexpr std::uint32_t kLinkLength = 100;  // metres, of each link
constexpr std::uint32_t kMainRoadLength = kMainRoadLinks * kLinkLength;

/// All 200 links, with what is needed to plan ahead: how they connect, their lengths and speed limits.
std::vector<datatypes::DT_linkLayerLongRange_struct> LinkLayerLongRange();
/// The links of the first two kilometres, with their course, surface and slope as well.
std::vector<datatypes::DT_linkLayerShortRange_struct> LinkLayerShortRange();
/// The lanes of the first two kilometres of the main road.
std::vector<datatypes::DT_laneLayer_struct> LaneLayer();
/// Traffic lights where side roads branch off in a town, and signs where the speed limit changes.
std::vector<datatypes::DT_positioningObjectsLayer_struct> PositioningObjectsLayer();
/// The vehicle on the main road, `metres` (at most kMainRoadLength) from its beginning, and its way to the garage.
std::vector<datatypes::DT_egoPositionLayer_struct> EgoPositionLayer(std::uint32_t metres);
/// Road works, ice, and a traffic jam.
std::vector<datatypes::DT_dynamicContentLayer_struct> DynamicContentLayer();
/// The parking garage with two levels.
std::vector<datatypes::DT_automatedParkingLayer_struct> AutomatedParkingLayer();
/// Central European time.
std::vector<datatypes::DT_timezoneInformation_struct> TimezoneInformation();

/// Gives every field of the skeleton its layer, with the vehicle at the beginning of the road, and lets getters be
/// answered with it: the skeleton can be offered then.
void Fill(kro::services::psd2::skeleton::Psd2Skeleton& skeleton);

}  // namespace example_map

// Written by scripts/generate from interfaces/model/psd2.json.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core_types/optional.h"
#include "interfaces/psd2/psd2_attributes.h"
#include "interfaces/psd2/psd2_landmarks.h"
#include "interfaces/psd2/psd2_lanes.h"
#include "interfaces/psd2/psd2_links.h"
#include "interfaces/psd2/psd2_parking.h"
#include "interfaces/psd2/psd2_references.h"
#include "interfaces/psd2/psd2_shapes.h"

/// The layers of the map: each is the record of one field.
namespace kro::services::psd2::datatypes {

/// Data about the map.
struct DT_metaData {
  /// Two numbers. Taken for: a version.
  struct Version {
    ara::core::Optional<std::uint8_t> member0;
    ara::core::Optional<std::uint16_t> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  /// Two numbers. Taken for: a region and its kind.
  struct Region {
    ara::core::Optional<Box<std::uint32_t>> member0;
    ara::core::Optional<std::uint8_t> member1;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
    }
  };

  ara::core::Optional<std::string> member0;
  ara::core::Optional<std::string> member1;
  ara::core::Optional<Version> member2;
  ara::core::Optional<SequenceBox<Region>> member3;
  ara::core::Optional<Box<std::uint32_t>> member4;
  ara::core::Optional<SequenceBox<DT_generalSpeedLimit>> member5;
  ara::core::Optional<Box<std::uint32_t>> member6;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
    enumerator(5, "member5", record.member5);
    enumerator(6, "member6", record.member6);
  }
};

/// What a layer says of itself. Taken for: what it holds, and from which map.
struct DT_layerInfo {
  /// Three numbers.
  struct Entry {
    ara::core::Optional<std::uint16_t> member0;
    ara::core::Optional<std::uint16_t> member1;
    ara::core::Optional<std::uint32_t> member2;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
      enumerator(2, "member2", record.member2);
    }
  };

  ara::core::Optional<SequenceBox<Entry>> member0;
  ara::core::Optional<SequenceBox<DT_metaData>> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

/// The content of the ego position's layer. Taken for: the vehicle's position at a time. Our choice: its members.
struct EgoPosition {
  ara::core::Optional<std::uint64_t> member0;
  ara::core::Optional<DT_pose> member1;
  ara::core::Optional<DT_relativeCoordinate> member2;
  ara::core::Optional<std::uint8_t> member3;
  ara::core::Optional<std::uint32_t> member4;
  ara::core::Optional<DT_path> member5;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
    enumerator(5, "member5", record.member5);
  }
};

/// The content of the dynamic layer. Taken for: an attribute of a part of the map, for a time. Our choice: its members.
struct DynamicContent {
  ara::core::Optional<DT_referencedAttribute> member0;
  ara::core::Optional<std::uint64_t> member1;
  ara::core::Optional<std::uint32_t> member2;
  ara::core::Optional<std::uint8_t> member3;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
  }
};

/// What all layers but the time zone have in common: sixteen bytes, the contents, and what the layer says of itself.
template <typename Content>
struct Layer {
  ara::core::Optional<LayerBytes> member0;
  ara::core::Optional<std::vector<Content>> member1;
  ara::core::Optional<DT_layerInfo> layerInfo;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "layerInfo", record.layerInfo);
  }
};

/// The links far ahead.
struct DT_linkLayerLongRange_struct : Layer<DT_link> {};

/// The links close ahead.
struct DT_linkLayerShortRange_struct : Layer<DT_link> {};

/// The lanes.
struct DT_laneLayer_struct : Layer<DT_laneGroup> {};

/// The landmarks.
struct DT_positioningObjectsLayer_struct : Layer<DT_landmark> {};

/// Where the vehicle is on the map.
struct DT_egoPositionLayer_struct : Layer<EgoPosition> {};

/// What changes on the road. Taken for: closures, weather, traffic.
struct DT_dynamicContentLayer_struct : Layer<DynamicContent> {};

/// The parking garages.
struct DT_automatedParkingLayer_struct : Layer<DT_parkingGarage> {};

/// The time zone of the vehicle's position.
struct DT_timezoneInformation_struct {
  /// A date and a time of day.
  struct DateTime {
    ara::core::Optional<std::uint32_t> member0;
    ara::core::Optional<std::uint8_t> member1;
    ara::core::Optional<std::uint16_t> member2;
    ara::core::Optional<std::uint8_t> member3;
    ara::core::Optional<std::uint8_t> member4;
    ara::core::Optional<std::uint8_t> member5;
    ara::core::Optional<std::uint8_t> member6;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
      enumerator(2, "member2", record.member2);
      enumerator(3, "member3", record.member3);
      enumerator(4, "member4", record.member4);
      enumerator(5, "member5", record.member5);
      enumerator(6, "member6", record.member6);
    }
  };

  /// A time zone. Taken for: the zone and the times between which it holds.
  struct TimeZone {
    ara::core::Optional<Box<std::uint32_t>> member0;
    ara::core::Optional<DateTime> member1;
    ara::core::Optional<DateTime> member2;
    ara::core::Optional<std::uint8_t> member3;

    template <typename Record, typename Enumerator>
    static void enumerate(Record& record, Enumerator&& enumerator) {
      enumerator(0, "member0", record.member0);
      enumerator(1, "member1", record.member1);
      enumerator(2, "member2", record.member2);
      enumerator(3, "member3", record.member3);
    }
  };

  ara::core::Optional<LayerBytes> member0;
  ara::core::Optional<TimeZone> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

}  // namespace kro::services::psd2::datatypes

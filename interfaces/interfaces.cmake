# Written by scripts/generate from interfaces/model.
# The sources of the interfaces.
set(tarn7_interface_sources
  chargetimemanager/chargetimemanager_impl.cpp
  energysystem/energysystem_impl.cpp
  psd2/psd2_skeleton.cpp
  routebasedconsumption/routebasedconsumption_impl.cpp
  routebasedenergycontents/routebasedenergycontents_skeleton.cpp
)

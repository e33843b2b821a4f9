#pragma once
// The LLDP messages of the log catalogue. Units that declare them hold one
// LldpLogHandles each; nothing is ever emitted through them.

#include "Zet/LogHandle.h"

struct LldpLogHandles {
  Zet::LogHandle neighborNew{"LLDP_NEIGHBOR_NEW",
                             Zet::LogSeverity::notice,
                             "LLDP neighbor with chassisId %s and portId %s added on interface %s",
                             "A new LLDP neighbor was added to the neighbor table.",
                             Zet::NoActionRequired,
                             0.0,
                             1.0,
                             false};
  Zet::LogHandle neighborTimeout{
      "LLDP_NEIGHBOR_TIMEOUT",
      Zet::LogSeverity::notice,
      "LLDP neighbor with chassisId %s and portId %s timed out on interface %s",
      "An LLDP neighbor was deleted from the neighbor table since it timed out.",
      Zet::NoActionRequired,
      0.0,
      1.0,
      false};
  Zet::LogHandle neighborGone{
      "LLDP_NEIGHBOR_GONE",
      Zet::LogSeverity::notice,
      "Received a shutdown frame from LLDP neighbor with chassisId %s and portId %s on interface %s",
      "An LLDP neighbor was deleted from the neighbor table since an LLDPDU with a TTL of 0 was received from that "
      "neighbor.",
      Zet::NoActionRequired,
      0.0,
      1.0,
      false};
  Zet::LogHandle rxRateLimit{
      "LLDP_RX_RATELIMIT",
      Zet::LogSeverity::warning,
      "Exceeded Rx LLDPDU rate limit on %s (more than %d LLDPDUs in %f seconds)",
      "The switch received too many LLDPDUs on a port in too short a period of time, so we dropped the most recent "
      "received LLDPDU.",
      "This could indicate a mis-configured neighbor, or a network loop.  Check the configuration of the neighbor "
      "connected to the interface and configure the LLDPDUs to be sent at a reasonable rate and ensure there are no "
      "network loops.",
      60.0,
      1.0,
      false};
  Zet::LogHandle remoteTablesCleared{"LLDP_REMOTE_TABLES_CLEARED",
                                     Zet::LogSeverity::notice,
                                     "LLDP neighbor table cleared by %s on %s",
                                     "The LLDP neighbor table was cleared by a CLI command.",
                                     Zet::NoActionRequired,
                                     0.0,
                                     1.0,
                                     false};
};

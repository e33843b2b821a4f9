#pragma once
// Golden data for requests over SNMP: the requests to send to the agent and
// what each must get, and the tables a walk must give exactly, compared with
// what the agent answered.

#include <string>
#include <vector>

#include "SnmpClient.h"

class AgentProcess;

struct Expected {
  std::string oid;
  int type;
  long integer;      // INTEGER, Gauge32, Counter32, TimeTicks, compared as 32 bits
  std::string text;  // the bytes of an OCTET STRING, the dotted value of an OBJECT IDENTIFIER
  bool anyValue = false;  // only the type is compared: a value that moves, such as a time
};

struct Table {
  std::string name;
  std::string oid;
  std::vector<Expected> rows;
};

// One request and what it must get; the trace lines are those the agent
// writes from the request on.
struct Probe {
  std::string why;
  std::string kind;  // "get", "getNext" or "set"
  std::vector<std::string> oids;
  long value = 0;  // a SET's INTEGER
  std::string community;
  long errorStatus = 0;
  long errorIndex = -1;           // -1: not compared
  std::vector<Expected> answers;  // empty: not compared
  std::vector<std::string> logged;
  std::vector<std::string> notLogged;
};

struct Golden {
  std::string scenario;  // a file of tests/integration/data
  std::vector<Probe> probes;
  std::vector<Table> tables;
  std::string mibWalk;  // an object to walk with the MIB modules loaded, or empty
  std::vector<std::string> mibWalkLines;
};

// A golden file (JSON); each member may be left out, and "description" says what it holds:
//   {"scenario": "device.json",
//    "probes": [{"why": "...", "get": ["1.3.6.1.2.1.2.2.1.1.1"], "answers": [[...row...]]},
//               {"why": "...", "getNext": ["1.3.6.1.2.1.2.2.1.1"], "answers": [...]},
//               {"why": "...", "set": "1.3.6.1.2.1.1.5.0", "value": 1, "community": "private",
//                "error": "notWritable", "errorIndex": 1, "logged": ["..."], "notLogged": ["..."]}],
//    "tables": [{"name": "ifTable", "oid": "1.3.6.1.2.1.2.2",
//                "rows": [["1.3.6.1.2.1.2.2.1.1.1", "INTEGER", 1, "ifIndex"],
//                         ["1.3.6.1.2.1.2.2.1.6.1", "OCTET STRING", {"hex": "020000000001"}],
//                         ["1.3.6.1.2.1.1.3.0", "TimeTicks", null]]}],
//    "mibWalk": {"object": "LLDP-MIB::lldpObjects", "lines": ["...a line snmpwalk prints..."]}}
// A row is OID, type, value and an optional comment. A value is a number, a
// text, {"hex": ...} for other bytes, a dotted OID, or null for any value of
// the type. Types are named as snmpwalk names them, and "noSuchObject",
// "noSuchInstance" with null. A probe's community is "public", "private" for
// a SET; its error "noError" unless named.
Golden readGolden(std::string const& path);
std::vector<Table> readGoldenTables(std::string const& path);

// One failure per mismatching part, naming the OID.
void expectValue(VarBind const& got, Expected const& want);
// Walks each table and expects exactly its rows, in order.
void expectWalks(SnmpClient& client, std::vector<Table> const& tables);
// Whether each table walks the OIDs of its rows, for waiting on a change.
bool walksTheRowsOf(SnmpClient& client, std::vector<Table> const& tables);
// Sends the probes in order, then walks the tables, then walks the MIB
// object with net-snmp's tools: no served type may be unlike the MIB's.
void expectGolden(AgentProcess const& agent, Golden const& golden);

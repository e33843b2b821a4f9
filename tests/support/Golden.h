#pragma once
// Golden data for walks over SNMP: the expected OID, type and value of each
// object, compared with what the agent answered.

#include <string>
#include <vector>

#include "SnmpClient.h"

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

// The tables of a golden file (JSON):
//   {"tables": [{"name": "ifTable", "oid": "1.3.6.1.2.1.2.2",
//                "rows": [["1.3.6.1.2.1.2.2.1.1.1", "INTEGER", 1],
//                         ["1.3.6.1.2.1.2.2.1.6.1", "OCTET STRING", {"hex": "020000000001"}],
//                         ["1.3.6.1.2.1.1.3.0", "TimeTicks", null]]}]}
// A value is a number, a text, {"hex": ...} for other bytes, a dotted OID, or
// null for any value of the type. Types are named as snmpwalk names them.
std::vector<Table> readGoldenTables(std::string const& path);

// One failure per mismatching part, naming the OID.
void expectValue(VarBind const& got, Expected const& want);
// Walks each table and expects exactly its rows, in order.
void expectWalks(SnmpClient& client, std::vector<Table> const& tables);

// snmpwalk of `object` with the IEEE MIB modules loaded, so that a served type
// unlike the MIB's shows as "Wrong Type"; standard output and error together.
std::string walkWithMibs(std::string const& peer, std::string const& object, int* status);

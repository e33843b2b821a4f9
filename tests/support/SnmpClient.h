#pragma once
// A small SNMP manager for the tests, on net-snmp's client library: GET,
// GETNEXT, SET and walks against an agent on a loopback address.

#include <cstdint>
#include <string>
#include <vector>

struct VarBind {
  std::string oid;         // numeric, dotted, without a leading dot
  int type = 0;            // ASN type of the value (or of the exception)
  long integer = 0;        // INTEGER, Gauge32, Counter32, TimeTicks
  std::string bytes;       // OCTET STRING
  std::string objectId;    // OBJECT IDENTIFIER, dotted
};

struct Response {
  bool timedOut = false;
  long errorStatus = 0;
  long errorIndex = 0;
  std::vector<VarBind> varBinds;
};

class SnmpClient {
 public:
  // `peer` in net-snmp transport syntax, e.g. "udp:127.0.0.1:1161"; SNMPv2c.
  // A request is sent `1 + retries` times, each waiting `timeoutMicroseconds`.
  SnmpClient(std::string const& peer, std::string const& community, long timeoutMicroseconds = 2000000,
             int retries = 1);
  ~SnmpClient();
  SnmpClient(SnmpClient const&) = delete;
  SnmpClient& operator=(SnmpClient const&) = delete;

  Response get(std::vector<std::string> const& oids);
  Response getNext(std::string const& oid);
  // One PDU for the whole list.
  Response getNext(std::vector<std::string> const& oids);
  Response getBulk(std::vector<std::string> const& oids, long nonRepeaters, long maxRepetitions);
  // SET of one INTEGER value.
  Response setInteger(std::string const& oid, long value);
  // GETNEXT from `subtree` until the answer leaves it; at most `limit` steps.
  std::vector<VarBind> walk(std::string const& subtree, int limit = 10000);

 private:
  void* session_;
};

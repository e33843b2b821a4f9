#include "SnmpClient.h"

#include <cstdlib>
#include <stdexcept>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

namespace {

std::vector<oid> parseOid(std::string const& text) {
  std::vector<oid> result(MAX_OID_LEN);
  size_t length = result.size();
  std::string const dotted = text.empty() || text[0] == '.' ? text : "." + text;
  if (!read_objid(dotted.c_str(), result.data(), &length)) {
    throw std::invalid_argument("bad OID " + text);
  }
  result.resize(length);
  return result;
}

std::string oidText(oid const* name, size_t length) {
  std::string text;
  for (size_t i = 0; i < length; ++i) {
    text += (i ? "." : "") + std::to_string(name[i]);
  }
  return text;
}

VarBind toVarBind(netsnmp_variable_list const* v) {
  VarBind b;
  b.oid = oidText(v->name, v->name_length);
  b.type = v->type;
  switch (v->type) {
    case ASN_INTEGER:
    case ASN_GAUGE:
    case ASN_COUNTER:
    case ASN_TIMETICKS:
      b.integer = *v->val.integer;
      break;
    case ASN_OCTET_STR:
      b.bytes.assign(reinterpret_cast<char const*>(v->val.string), v->val_len);
      break;
    case ASN_OBJECT_ID:
      b.objectId = oidText(v->val.objid, v->val_len / sizeof(oid));
      break;
    default:
      break;
  }
  return b;
}

}  // namespace

SnmpClient::SnmpClient(std::string const& peer, std::string const& community, long timeoutMicroseconds,
                       int retries) {
  static bool const libraryReady = [] {
    setenv("MIBS", "", 0);
    init_snmp("lldp-snmp-tests");
    return true;
  }();
  (void)libraryReady;
  netsnmp_session settings;
  snmp_sess_init(&settings);
  std::string peerName = peer;
  std::string communityText = community;
  settings.peername = peerName.data();
  settings.version = SNMP_VERSION_2c;
  settings.community = reinterpret_cast<u_char*>(communityText.data());
  settings.community_len = communityText.size();
  settings.timeout = timeoutMicroseconds;
  settings.retries = retries;
  session_ = snmp_open(&settings);
  if (!session_) {
    throw std::runtime_error("cannot open an SNMP session to " + peer);
  }
}

SnmpClient::~SnmpClient() { snmp_close(static_cast<netsnmp_session*>(session_)); }

namespace {
Response exchange(void* session, netsnmp_pdu* pdu) {
  netsnmp_pdu* answer = nullptr;
  Response r;
  // The traditional API waits on every open session, so an agent in the same
  // process serves the request while the client waits.
  int const status = snmp_synch_response(static_cast<netsnmp_session*>(session), pdu, &answer);
  if (status != STAT_SUCCESS || !answer) {
    r.timedOut = true;
  } else {
    r.errorStatus = answer->errstat;
    r.errorIndex = answer->errindex;
    for (auto* v = answer->variables; v; v = v->next_variable) {
      r.varBinds.push_back(toVarBind(v));
    }
  }
  if (answer) {
    snmp_free_pdu(answer);
  }
  return r;
}

netsnmp_pdu* requestOf(int command, std::vector<std::string> const& oids) {
  auto* pdu = snmp_pdu_create(command);
  for (auto const& text : oids) {
    auto const name = parseOid(text);
    snmp_add_null_var(pdu, name.data(), name.size());
  }
  return pdu;
}
}  // namespace

Response SnmpClient::get(std::vector<std::string> const& oids) {
  return exchange(session_, requestOf(SNMP_MSG_GET, oids));
}

Response SnmpClient::getNext(std::string const& text) { return getNext(std::vector<std::string>{text}); }

Response SnmpClient::getNext(std::vector<std::string> const& oids) {
  return exchange(session_, requestOf(SNMP_MSG_GETNEXT, oids));
}

Response SnmpClient::getBulk(std::vector<std::string> const& oids, long nonRepeaters, long maxRepetitions) {
  auto* pdu = requestOf(SNMP_MSG_GETBULK, oids);
  pdu->non_repeaters = nonRepeaters;
  pdu->max_repetitions = maxRepetitions;
  return exchange(session_, pdu);
}

Response SnmpClient::setInteger(std::string const& text, long value) {
  auto* pdu = snmp_pdu_create(SNMP_MSG_SET);
  auto const name = parseOid(text);
  snmp_pdu_add_variable(pdu, name.data(), name.size(), ASN_INTEGER, &value, sizeof value);
  return exchange(session_, pdu);
}

std::vector<VarBind> SnmpClient::walk(std::string const& subtree, int limit) {
  std::vector<VarBind> result;
  std::string const prefix = subtree + ".";
  std::string current = subtree;
  for (int i = 0; i < limit; ++i) {
    auto r = getNext(current);
    if (r.timedOut || r.errorStatus != 0 || r.varBinds.empty()) {
      break;
    }
    auto const& b = r.varBinds.front();
    if (b.type == SNMP_ENDOFMIBVIEW || b.oid.rfind(prefix, 0) != 0) {
      break;
    }
    result.push_back(b);
    current = b.oid;
  }
  return result;
}

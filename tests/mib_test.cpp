// Names of object identifiers: the built-in objects and those of modules beside them.
#include "host/mib_database.h"

#include <gtest/gtest.h>

#include <string>

namespace qxview {
namespace {

std::string Describe(const MibDatabase& mib, const std::string& dotted) {
  QxMibEntry entry;
  if (mib.Find(dotted.c_str(), &entry) == 0) return "none";
  return std::string(entry.path) + " " + entry.nodeNumber + " [" + entry.suffix + "] " + entry.type + ", " +
         entry.access;
}

TEST(Mib, NamesBuiltInObjects) {
  const struct {
    const char *dotted, *expected;
  } cases[] = {
      {"1.3.6.1.2.1.1.1.0", "iso.org.dod.internet.mgmt.mib-2.system.sysDescr 1 [0] DisplayString, read-only"},
      {"1.3.6.1.2.1.1.1", "iso.org.dod.internet.mgmt.mib-2.system.sysDescr 1 [] DisplayString, read-only"},
      {"1.3.6.1.2.1.31.1.1.1.6.4294967295",
       "iso.org.dod.internet.mgmt.mib-2.ifMIB.ifMIBObjects.ifXTable.ifXEntry.ifHCInOctets 6 [4294967295] Counter64, "
       "read-only"},
      {"1.3.6.1.2.1.6.19.1.7.1.4.127.0.0.1.22.1.4.0.0.0.0.0",
       "iso.org.dod.internet.mgmt.mib-2.tcp.tcpConnectionTable.tcpConnectionEntry.tcpConnectionState 7 "
       "[1.4.127.0.0.1.22.1.4.0.0.0.0.0] INTEGER, read-write"},
      {"1.3.6.1.2.1.25.2.3", "iso.org.dod.internet.mgmt.mib-2.host.hrStorage.hrStorageTable 3 [] SEQUENCE OF, "
                             "not-accessible"},
      {"1.3.6.1.6.3.1.1.5.3", "iso.org.dod.internet.snmpV2.snmpModules.snmpMIB.snmpMIBObjects.snmpTraps.linkDown 3 [] "
                              "NOTIFICATION-TYPE, not-accessible"},
      // Arcs that do not follow one another: 100 behind 27.
      {"1.3.6.1.4.1.2021.4.100.0", "iso.org.dod.internet.private.enterprises.ucdavis.memory.memSwapError 100 [0] "
                                   "UCDErrorFlag, read-only"},
      {"1.3.6.1.4.1.2021.4.28.0", "iso.org.dod.internet.private.enterprises.ucdavis.memory 4 [28.0] OBJECT IDENTIFIER, "
                                  "not-accessible"},
      {"1.0.8802.1.1.2.1.3.3.0", "iso.std.iso8802.ieee802dot1.ieee802dot1mibs.lldpMIB.lldpObjects.lldpLocalSystemData."
                                 "lldpLocSysName 3 [0] SnmpAdminString, read-only"},
      {"0.0", "ccitt.zeroDotZero 0 [] OBJECT-IDENTITY, not-accessible"},
      {"1.3.6.1", "iso.org.dod.internet 1 [] OBJECT IDENTIFIER, not-accessible"},
      {"1.3.6.1.9", "iso.org.dod.internet 1 [9] OBJECT IDENTIFIER, not-accessible"},
      {"1.3.6.2", "none"},   // only a standards body would be named
      {"2.5.4.3", "none"},
      {"9", "none"},
      {"", "none"},
      {"<NULL>", "none"},
  };
  const MibDatabase mib;
  for (const auto& c : cases) EXPECT_EQ(Describe(mib, c.dotted), c.expected) << c.dotted;
}

TEST(Mib, TakesObjectsOfModules) {
  MibDatabase mib;
  mib.Add({{{1, 3, 6, 1, 4, 1, 32473, 5, 1}, "lampLevel", "Percent", "read-write"},
           {{1, 3, 6, 1, 2, 1, 1, 1}, "sysDescr", "OCTET STRING", "read-only"},
           {{2, 999}, "example", "OBJECT IDENTIFIER", "not-accessible"}});
  // Arcs on the way that no module names stand as numbers, and name nothing by themselves.
  EXPECT_EQ(Describe(mib, "1.3.6.1.4.1.32473.5.1.0"),
            "iso.org.dod.internet.private.enterprises.32473.5.lampLevel 1 [0] Percent, read-write");
  EXPECT_EQ(Describe(mib, "1.3.6.1.4.1.32473.5.2"),
            "iso.org.dod.internet.private.enterprises 1 [32473.5.2] OBJECT IDENTIFIER, not-accessible");
  EXPECT_EQ(Describe(mib, "1.3.6.1.2.1.1.1.0"),
            "iso.org.dod.internet.mgmt.mib-2.system.sysDescr 1 [0] OCTET STRING, read-only");
  EXPECT_EQ(Describe(mib, "2.999"), "joint-iso-ccitt.example 999 [] OBJECT IDENTIFIER, not-accessible");
}

TEST(Mib, HasNoEntryWhereATextDoesNotFit) {
  MibDatabase mib;
  mib.Add({{{1, 3, 6, 1, 4, 1, 32473, 1}, std::string(500, 'n'), "INTEGER", "read-only"},
           {{1, 3, 6, 1, 4, 1, 32473, 2}, "lamp", std::string(64, 't'), "read-only"}});
  EXPECT_EQ(Describe(mib, "1.3.6.1.4.1.32473.1.0"), "none");
  EXPECT_EQ(Describe(mib, "1.3.6.1.4.1.32473.2.0"), "none");
  std::string instance = "1.3.6.1.2.1.1.1";
  for (int i = 0; i < 256; ++i) instance += ".1";
  EXPECT_NE(Describe(mib, instance), "none");
  EXPECT_EQ(Describe(mib, instance + ".1"), "none");
}

}  // namespace
}  // namespace qxview

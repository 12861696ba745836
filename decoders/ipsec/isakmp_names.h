// Names of the values that the registries of IKE hold and both versions share.
#pragma once
#include "core/name_table.h"

namespace qxview {

inline constexpr auto kIkeGroupNames = SortedNames({
    {0, "NONE"}, {1, "768-bit MODP"}, {2, "1024-bit MODP"}, {3, "EC2N over GF[2^155]"}, {4, "EC2N over GF[2^185]"},
    {5, "1536-bit MODP"}, {6, "EC2N over GF[2^163], Random Curve"}, {7, "EC2N over GF[2^163], Koblitz Curve"},
    {8, "EC2N over GF[2^283], Random Curve"}, {9, "EC2N over GF[2^283], Koblitz Curve"},
    {10, "EC2N over GF[2^409], Random Curve"}, {11, "EC2N over GF[2^409], Koblitz Curve"},
    {12, "EC2N over GF[2^571], Random Curve"}, {13, "EC2N over GF[2^571], Koblitz Curve"}, {14, "2048-bit MODP"},
    {15, "3072-bit MODP"}, {16, "4096-bit MODP"}, {17, "6144-bit MODP"}, {18, "8192-bit MODP"},
    {19, "256-bit Random ECP"}, {20, "384-bit Random ECP"}, {21, "521-bit Random ECP"},
    {22, "1024-bit MODP with 160-bit Prime Order Subgroup"}, {23, "2048-bit MODP with 224-bit Prime Order Subgroup"},
    {24, "2048-bit MODP with 256-bit Prime Order Subgroup"}, {25, "192-bit Random ECP"}, {26, "224-bit Random ECP"},
    {27, "brainpoolP224r1"}, {28, "brainpoolP256r1"}, {29, "brainpoolP384r1"}, {30, "brainpoolP512r1"},
    {31, "Curve25519"}, {32, "Curve448"}, {33, "GOST3410_2012_256"}, {34, "GOST3410_2012_512"}, {35, "ml-kem-512"},
    {36, "ml-kem-768"}, {37, "ml-kem-1024"}});

inline constexpr auto kIkeEncodingNames = SortedNames({
    {0, "None"}, {1, "PKCS #7 Wrapped X.509 Certificate"}, {2, "PGP Certificate"}, {3, "DNS Signed Key"},
    {4, "X.509 Certificate - Signature"}, {5, "X.509 Certificate - Key Exchange"}, {6, "Kerberos Token"},
    {7, "Certificate Revocation List"}, {8, "Authority Revocation List"}, {9, "SPKI Certificate"},
    {10, "X.509 Certificate - Attribute"}, {11, "Raw RSA Key"}, {12, "Hash and URL of X.509 Certificate"},
    {13, "Hash and URL of X.509 Bundle"}, {14, "OCSP Content"}, {15, "Raw Public Key"}});

inline constexpr auto kIkeCompressionNames = SortedNames({
    {0, "RESERVED"}, {1, "IPCOMP_OUI"}, {2, "IPCOMP_DEFLATE"}, {3, "IPCOMP_LZS"}, {4, "IPCOMP_LZJH"}});

inline constexpr auto kIkeConfigurationNames = SortedNames({
    {0, "Reserved"}, {1, "CFG_REQUEST"}, {2, "CFG_REPLY"}, {3, "CFG_SET"}, {4, "CFG_ACK"}});

}  // namespace qxview

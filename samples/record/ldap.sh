#!/bin/bash
# ldap.pcap: slapd, asked by OpenLDAP's tools: every operation with and without controls, simple and SASL binds, results of
# several messages, and what is refused. One search goes through DIGEST-MD5's signing layer, one through its encrypting
# layer, one behind StartTLS; one over IPv6.
# shellcheck source-path=SCRIPTDIR source=hosts.sh
. "$(dirname "$0")/hosts.sh"
PATH=$PATH:/usr/sbin
need slapd slapadd ldapsearch ldapmodify ldapexop openssl

suffix=dc=example,dc=test
people=ou=people,$suffix
mkdir "$work/data"
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 3650 -subj /CN=ldap.example.test \
  -keyout "$work/key.pem" -out "$work/certificate.pem" 2>>"$work/log"
cat >"$work/slapd.conf" <<CONFIG
include /etc/ldap/schema/core.schema
include /etc/ldap/schema/cosine.schema
include /etc/ldap/schema/inetorgperson.schema
modulepath /usr/lib/ldap
moduleload back_mdb
moduleload sssvlv
moduleload syncprov
moduleload dds
pidfile $work/slapd.pid
TLSCertificateFile $work/certificate.pem
TLSCertificateKeyFile $work/key.pem
password-hash {CLEARTEXT}
authz-policy both
authz-regexp uid=([^,]*),cn=[^,]*,cn=auth uid=\$1,$people
sasl-secprops none
sasl-host ldap.example.test
allow bind_v2
referral ldap://elsewhere.example.test/
access to dn.base="" by * read
access to attrs=userPassword by self write by anonymous auth by * none
access to * by users read by * read
database mdb
suffix $suffix
rootdn cn=admin,$suffix
rootpw secret
directory $work/data
overlay sssvlv
overlay syncprov
overlay dds
CONFIG
cat >"$work/base.ldif" <<LDIF
dn: $suffix
objectClass: dcObject
objectClass: organization
dc: example
o: Example

dn: $people
objectClass: organizationalUnit
ou: people

dn: uid=ann,$people
objectClass: inetOrgPerson
uid: ann
cn: Ann Left
sn: Left
mail: ann@example.test
userPassword: orange
authzTo: dn.regex:^uid=.*,$people\$

dn: uid=bob,$people
objectClass: inetOrgPerson
uid: bob
cn: Bob Right
sn: Right
mail: bob@example.test
mail: robert@example.test
description: The second of two.

dn: ou=branch,$suffix
objectClass: referral
objectClass: extensibleObject
ou: branch
ref: ldap://branch.example.test/ou=branch,$suffix
LDIF
cat >"$work/add.ldif" <<LDIF
dn: uid=joerg,$people
objectClass: inetOrgPerson
uid: joerg
cn: Jörg (der Dritte) * 三
sn:: U8O2cmVu
jpegPhoto:: /9j/4AAQSkZJRgABAQAAAQABAAD/2Q==
userPassword: melon
telephoneNumber: +49 30 0123
description: $(printf 'A long description of a person. %.0s' $(seq 50))

dn: uid=carol,$people
objectClass: inetOrgPerson
uid: carol
cn: Carol
sn: Center
manager: uid=ann,$people
LDIF
cat >"$work/modify.ldif" <<LDIF
dn: uid=carol,$people
changetype: modify
add: mail
mail: carol@example.test
mail: caroline@example.test
-
replace: sn
sn: Centre
-
delete: manager
-
add: employeeNumber
employeeNumber: 7
LDIF
chmod -R a+rX "$work"
slapadd -f "$work/slapd.conf" -l "$work/base.ldif" >>"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }

connect_hosts
start_on "$right" slapd -d 0 -f "$work/slapd.conf" -h 'ldap://192.0.2.2/ ldap://[2001:db8::2]/ ldap://127.0.0.1/'
await_port 389
record cable port 389 and greater 67   # without what acknowledges and carries nothing

echo "TLS_REQCERT never" >"$work/ldap.conf"
export LDAPCONF=$work/ldap.conf HOME=$work
run() { on "$left" "$@" >>"$work/log" 2>&1 || true; }
server=ldap://192.0.2.2/
anonymous=(-x -H "$server")
admin=(-x -H "$server" -D "cn=admin,$suffix" -w secret)
sasl=(-Q -H "$server" -U ann -w orange)
find=(ldapsearch -LLL -b "$suffix")

run ldapsearch "${anonymous[@]}" -LLL -b '' -s base supportedSASLMechanisms supportedControl supportedExtension
run ldapmodify -a "${admin[@]}" -f "$work/add.ldif"
run "${find[@]}" "${anonymous[@]}" '(&(objectClass=inetOrgPerson)(|(cn=A*n*t)(sn>=R)(uid~=bob)(!(mail<=z)))(cn:caseExactMatch:=Carol)(ou:dn:=people))' cn
run "${find[@]}" "${anonymous[@]}" '(cn=J*\28der *\2a*)' cn sn jpegPhoto description
run "${find[@]}" "${admin[@]}" -E pr=2/noprompt '(uid=*)' 1.1
run "${find[@]}" "${admin[@]}" -E sss=-sn:2.5.13.3/cn:2.5.13.3 -E vlv=0/1/2/0 '(sn=*)' sn </dev/null
run "${find[@]}" "${admin[@]}" -E sss=sn '(uid=a*)' sn
run "${find[@]}" "${admin[@]}" -E mv='((mail=rob*))' -E subentries=true -E '!domainScope' '(uid=bob)' mail
run "${find[@]}" "${admin[@]}" -E '!dontUseCopy' -e ppolicy -e '!authzid=dn:uid=bob,'"$people" -s one '(objectClass=*)' ou
run "${find[@]}" "${admin[@]}" -e manageDSAit -A '(ou=branch)'
run "${find[@]}" "${admin[@]}" -E sync=ro '(uid=ann)' uid
run "${find[@]}" "${anonymous[@]}" -z 1 -l 5 -a always '(uid=*)' uid
run ldapmodify "${admin[@]}" -e preread=sn,mail -e postread=sn,mail -f "$work/modify.ldif"
run ldapmodify "${admin[@]}" -e '!assert=(sn=Nobody)' -f "$work/modify.ldif"
run ldapcompare "${anonymous[@]}" "uid=carol,$people" sn:Centre
run ldapcompare "${anonymous[@]}" "uid=carol,$people" sn:Wrong
run ldapmodrdn "${admin[@]}" -r -s "$suffix" "uid=carol,$people" uid=caroline
run ldappasswd "${admin[@]}" -a melon -s grape "uid=joerg,$people"
run ldappasswd "${admin[@]}" "uid=joerg,$people"
run ldapwhoami "${admin[@]}"
run ldapexop "${admin[@]}" cancel 99
run ldapexop "${admin[@]}" refresh "uid=bob,$people" 3600
run ldapexop "${admin[@]}" 1.3.6.1.4.1.32473.1:value
run ldapdelete "${admin[@]}" "uid=caroline,$suffix"
# A search that goes on; in the meantime an entry goes.
on "$left" timeout 1.5 ldapsearch -LLL -b "$suffix" "${admin[@]}" -E sync=rp '(uid=*)' 1.1 >>"$work/log" 2>&1 &
waiting=$!
sleep 0.7
run ldapdelete "${admin[@]}" "uid=bob,$people"
wait "$waiting" || true

# Several requests in one segment, as the tools do not send them: two searches, the second abandoned at once, and the end.
search() { printf '\x30\x25\x02\x01%b\x63\x20\x04\x00\x0A\x01%b\x0A\x01\x00\x02\x01\x00\x02\x01\x00\x01\x01\x00\x87\x0BobjectClass\x30\x00' "$@"; }
{ search '\x01' '\x00'; search '\x02' '\x02'; printf '\x30\x06\x02\x01\x03\x50\x01\x02\x30\x05\x02\x01\x04\x42\x00'; } >"$work/requests"
on "$left" bash -c "exec 3<>/dev/tcp/192.0.2.2/389; cat '$work/requests' >&3; cat <&3 >/dev/null"

# What is refused.
run ldapwhoami -x -H "$server" -D "uid=ann,$people" -w wrong
run ldapsearch "${anonymous[@]}" -P 2 -b "$suffix" -s base 1.1
run ldapsearch "${anonymous[@]}" -b "uid=nobody,$people"
run ldapsearch "${anonymous[@]}" -b dc=elsewhere,dc=test
run ldapdelete "${anonymous[@]}" "$people"
run ldapmodify "${admin[@]}" -a <<<"dn: cn=thing,$suffix
objectClass: device
cn: thing
mail: not@allowed"
run ldapmodify "${anonymous[@]}" <<<"dn: uid=ann,$people
changetype: modify
replace: sn
sn: Other"

for mechanism in PLAIN SCRAM-SHA-1 DIGEST-MD5; do run ldapwhoami "${sasl[@]}" -Y "$mechanism" -O none,maxssf=0; done
for strength in 1 128; do
  run "${find[@]}" "${sasl[@]}" -Y DIGEST-MD5 -O "minssf=$strength,maxssf=$strength" '(uid=ann)' cn mail
done
run ldapwhoami "${anonymous[@]}" -ZZ
run "${find[@]}" -x -H 'ldap://[2001:db8::2]/' '(uid=ann)' mail
keep_as ldap.pcap
[ -z "${KEEP_LOG:-}" ] || cp "$work/log" "$KEEP_LOG"

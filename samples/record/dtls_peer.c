// A client and a server of DTLS 1.3 over NSS, for the recording: one message each way, then the end. The client says its secrets.
//   dtls_peer server|client DATABASE OWN-ADDRESS OTHER-ADDRESS [short]
// The server's certificate is "server" of the database; "short" asks for records with short headers.
#include <nspr.h>
#include <nss.h>
#include <pk11pub.h>
#include <cert.h>
#include <keyhi.h>
#include <ssl.h>
#include <sslexp.h>
#include <sslproto.h>
#include <stdio.h>
#include <string.h>

enum { kPort = 4433 };

static int Fail(const char* what) {
  fprintf(stderr, "dtls_peer: %s: %d\n", what, PR_GetError());
  return 1;
}

static SECStatus Trust(void* arg, PRFileDesc* fd, PRBool check, PRBool isServer) {
  (void)arg, (void)fd, (void)check, (void)isServer;
  return SECSuccess;
}

// As lines of a key log, of which the client's random number is left to be filled in.
static void TellSecret(PRFileDesc* fd, PRUint16 epoch, SSLSecretDirection direction, PK11SymKey* secret, void* arg) {
  enum { kHandshake = 2 };
  (void)fd, (void)arg;
  if (epoch < kHandshake || PK11_ExtractKeyValue(secret) != SECSuccess) return;
  const SECItem* bytes = PK11_GetKeyData(secret);
  printf("%s_%s RANDOM ", direction == ssl_secret_write ? "CLIENT" : "SERVER",
         epoch == kHandshake ? "HANDSHAKE_TRAFFIC_SECRET" : "TRAFFIC_SECRET_0");
  for (unsigned i = 0; i < bytes->len; ++i) printf("%02x", bytes->data[i]);
  printf("\n");
}

static int Configure(PRFileDesc* ssl, int isServer, int isShort) {
  const SSLVersionRange range = {SSL_LIBRARY_VERSION_DTLS_1_3, SSL_LIBRARY_VERSION_DTLS_1_3};
  if (SSL_VersionRangeSet(ssl, &range) != SECSuccess) return Fail("version");
  SSL_OptionSet(ssl, SSL_SECURITY, PR_TRUE);
  SSL_OptionSet(ssl, isServer ? SSL_HANDSHAKE_AS_SERVER : SSL_HANDSHAKE_AS_CLIENT, PR_TRUE);
  SSL_OptionSet(ssl, SSL_ENABLE_SESSION_TICKETS, PR_TRUE);
  SSL_OptionSet(ssl, SSL_ENABLE_DTLS_SHORT_HEADER, isShort);
  SSL_AuthCertificateHook(ssl, Trust, NULL);
  if (!isServer) SSL_SecretCallback(ssl, TellSecret, NULL);
  if (!isServer) return SSL_SetURL(ssl, "right.example") == SECSuccess ? 0 : Fail("name");
  CERTCertificate* certificate = PK11_FindCertFromNickname("server", NULL);
  SECKEYPrivateKey* key = certificate ? PK11_FindKeyByAnyCert(certificate, NULL) : NULL;
  if (!key || SSL_ConfigServerCert(ssl, certificate, key, NULL, 0) != SECSuccess) return Fail("certificate");
  return 0;
}

// Waits for a datagram, or for the time that something is to be sent again.
static void Wait(PRFileDesc* ssl) {
  PRIntervalTime timeout;
  const PRIntervalTime most = PR_MillisecondsToInterval(50);
  if (DTLS_GetHandshakeTimeout(ssl, &timeout) != SECSuccess || timeout > most) timeout = most;
  PRPollDesc poll = {ssl, PR_POLL_READ, 0};
  PR_Poll(&poll, 1, timeout);
  PR_Sleep(PR_MillisecondsToInterval(5));
}

static int Shake(PRFileDesc* ssl) {
  for (int tries = 0; tries < 400; ++tries) {
    if (SSL_ForceHandshake(ssl) == SECSuccess) return 0;
    if (PR_GetError() != PR_WOULD_BLOCK_ERROR) return Fail("handshake");
    Wait(ssl);
  }
  return Fail("handshake takes too long");
}

static int Receive(PRFileDesc* ssl) {
  char bytes[2048];
  for (int tries = 0; tries < 20; ++tries) {
    const int length = PR_Recv(ssl, bytes, sizeof bytes, 0, PR_INTERVAL_NO_WAIT);
    if (length >= 0) return length;
    if (PR_GetError() != PR_WOULD_BLOCK_ERROR) return -1;
    Wait(ssl);
  }
  return -1;
}

int main(int argc, char** argv) {
  if (argc < 5) return Fail("arguments");
  const int isServer = strcmp(argv[1], "server") == 0;
  if (NSS_Init(argv[2]) != SECSuccess) return Fail("database");
  NSS_SetDomesticPolicy();
  if (isServer) SSL_ConfigServerSessionIDCache(0, 0, 0, argv[2]);
  PRNetAddr own, other;
  if (PR_StringToNetAddr(argv[3], &own) || PR_StringToNetAddr(argv[4], &other)) return Fail("address");
  PR_SetNetAddr(PR_IpAddrNull, own.raw.family, kPort, &own);
  PR_SetNetAddr(PR_IpAddrNull, other.raw.family, kPort, &other);
  PRFileDesc* udp = PR_OpenUDPSocket(own.raw.family);
  if (!udp || PR_Bind(udp, &own) || PR_Connect(udp, &other, PR_INTERVAL_NO_TIMEOUT)) return Fail("socket");
  PRSocketOptionData option = {PR_SockOpt_Nonblocking, {.non_blocking = PR_TRUE}};
  PR_SetSocketOption(udp, &option);
  PRFileDesc* ssl = DTLS_ImportFD(NULL, udp);
  if (!ssl || Configure(ssl, isServer, argc > 5) || SSL_ResetHandshake(ssl, isServer)) return Fail("session");
  if (Shake(ssl)) return 1;
  static const char kText[] = "A message over DTLS 1.3";
  if (!isServer) PR_Send(ssl, kText, sizeof kText - 1, 0, PR_INTERVAL_NO_WAIT);
  if (Receive(ssl) < 0) return Fail("nothing came");
  if (isServer) PR_Send(ssl, kText, sizeof kText - 1, 0, PR_INTERVAL_NO_WAIT);
  Receive(ssl);
  PR_Shutdown(ssl, PR_SHUTDOWN_BOTH);
  PR_Close(ssl);
  return 0;
}

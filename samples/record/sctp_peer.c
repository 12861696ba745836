// One end of an association of the Stream Control Transmission Protocol by libusrsctp, for sctp.sh:
//
//   sctp_peer ADDRESS                     waits for an association, answers every message, and ends with it
//   sctp_peer ADDRESS PEER [abort]        opens one and says what there is to say
#include <arpa/inet.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <usrsctp.h>

enum { kPort = 5001, kStreams = 8 };

static struct sockaddr_in AddressOf(const char* text) {
  struct sockaddr_in address = {.sin_family = AF_INET, .sin_port = htons(kPort)};
  inet_pton(AF_INET, text, &address.sin_addr);
  return address;
}

static void Fail(const char* what) {
  perror(what);
  exit(1);
}

static struct socket* Open(const char* own) {
  struct socket* end = usrsctp_socket(AF_INET, SOCK_STREAM, IPPROTO_SCTP, NULL, NULL, 0, NULL);
  if (!end) Fail("socket");
  struct sctp_initmsg init = {.sinit_num_ostreams = kStreams, .sinit_max_instreams = kStreams};
  usrsctp_setsockopt(end, IPPROTO_SCTP, SCTP_INITMSG, &init, sizeof init);
  struct sctp_assoc_value reset = {.assoc_id = SCTP_ALL_ASSOC, .assoc_value = SCTP_ENABLE_RESET_STREAM_REQ | SCTP_ENABLE_CHANGE_ASSOC_REQ};
  usrsctp_setsockopt(end, IPPROTO_SCTP, SCTP_ENABLE_STREAM_RESET, &reset, sizeof reset);
  struct sctp_setadaptation adaptation = {.ssb_adaptation_ind = 0x51585657};
  usrsctp_setsockopt(end, IPPROTO_SCTP, SCTP_ADAPTATION_LAYER, &adaptation, sizeof adaptation);
  struct sockaddr_in address = AddressOf(own);
  if (usrsctp_bind(end, (struct sockaddr*)&address, sizeof address)) Fail("bind");
  return end;
}

static void Say(struct socket* end, const void* bytes, size_t size, int stream, uint32_t protocol, int flags, int lifetime) {
  struct sctp_sendv_spa how = {.sendv_flags = SCTP_SEND_SNDINFO_VALID};
  how.sendv_sndinfo.snd_sid = (uint16_t)stream;
  how.sendv_sndinfo.snd_ppid = htonl(protocol);
  how.sendv_sndinfo.snd_flags = (uint16_t)flags;
  if (lifetime) {
    how.sendv_flags |= SCTP_SEND_PRINFO_VALID;
    how.sendv_prinfo.pr_policy = SCTP_PR_SCTP_TTL;
    how.sendv_prinfo.pr_value = (uint32_t)lifetime;
  }
  if (usrsctp_sendv(end, bytes, size, NULL, 0, &how, sizeof how, SCTP_SENDV_SPA, 0) < 0) perror("send");
}

static void Listen(struct socket* end, int answers) {
  static char bytes[65536];
  for (;;) {
    struct sockaddr_in from;
    struct sctp_rcvinfo info;
    socklen_t fromSize = sizeof from, infoSize = sizeof info;
    unsigned kind;
    int flags = 0;
    const ssize_t size = usrsctp_recvv(end, bytes, sizeof bytes, (struct sockaddr*)&from, &fromSize, &info, &infoSize, &kind, &flags);
    if (size <= 0) return;
    if (answers && size < 100) Say(end, bytes, (size_t)size, 0, 0, 0, 0);
  }
}

static void Talk(struct socket* end, int isAbort) {
  static char longText[4000];
  memset(longText, 'x', sizeof longText);
  Say(end, "hello", 5, 0, 38, 0, 0);                       // echo
  Say(end, "unordered", 9, 1, 53, SCTP_UNORDERED, 0);      // as WebRTC's data
  Say(end, "soon or never", 13, 2, 51, 0, 500);
  Say(end, longText, sizeof longText, 3, 0, 0, 0);         // in fragments
  Say(end, "now", 3, 4, 0, SCTP_SACK_IMMEDIATELY, 0);
  usleep(400000);
  if (isAbort) {
    struct linger linger = {.l_onoff = 1, .l_linger = 0};
    usrsctp_setsockopt(end, SOL_SOCKET, SO_LINGER, &linger, sizeof linger);
    return;
  }
  char room[sizeof(struct sctp_reset_streams) + 2 * sizeof(uint16_t)] = {0};
  struct sctp_reset_streams* reset = (struct sctp_reset_streams*)room;
  reset->srs_flags = SCTP_STREAM_RESET_OUTGOING;
  reset->srs_number_streams = 2;
  reset->srs_stream_list[0] = 1;
  reset->srs_stream_list[1] = 2;
  if (usrsctp_setsockopt(end, IPPROTO_SCTP, SCTP_RESET_STREAMS, reset, sizeof room)) perror("reset");
  usleep(400000);
  struct sctp_add_streams add = {.sas_outstrms = 4};
  if (usrsctp_setsockopt(end, IPPROTO_SCTP, SCTP_ADD_STREAMS, &add, sizeof add)) perror("add");
  usleep(400000);
  usrsctp_shutdown(end, SHUT_WR);
  Listen(end, 0);
}

int main(int count, char** words) {
  if (count < 2) return 2;
  usrsctp_init(0, NULL, NULL);
  usrsctp_sysctl_set_sctp_ecn_enable(1);
  usrsctp_sysctl_set_sctp_nrsack_enable(count != 3);   // both kinds of acknowledgements are to be seen
  usrsctp_sysctl_set_sctp_blackhole(0);
  usrsctp_sysctl_set_sctp_heartbeat_interval_default(300);
  struct socket* end = Open(words[1]);
  if (count == 2) {
    if (usrsctp_listen(end, 1)) Fail("listen");
    for (int i = 0; i < 2; ++i) {
      struct socket* peer = usrsctp_accept(end, NULL, NULL);
      if (!peer) Fail("accept");
      Listen(peer, 1);
      usrsctp_close(peer);
    }
  } else {
    struct sockaddr_in peer = AddressOf(words[2]);
    if (usrsctp_connect(end, (struct sockaddr*)&peer, sizeof peer)) Fail("connect");
    Talk(end, count > 3);
    usrsctp_close(end);
  }
  usleep(800000);
  return 0;
}

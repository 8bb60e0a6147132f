/* Every element pair by what zppcodecs gives: speech through both, gaps, flushes, properties, and broken input. */
#include <gst/check/gstcheck.h>
#include <gst/check/gstharness.h>
#include <math.h>
#include <string.h>

#include "zppcodecs.h"

typedef struct {
  const char *element, *codec;
  int bitRate, variant;
} Row;
static const Row rows[] = {
    {"mulaw", "g711-mulaw", 0, 0}, {"alaw", "g711-alaw", 0, 0}, {"g726", "g726", 24000, 1}, {"g7221", "g722.1", 32000, 0},
    {"g723", "g723.1", 5300, 0},   {"g728", "g728", 0, 0},      {"g729", "g729", 0, 0},     {"g729a", "g729a", 0, 0},
    {"g729i", "g729i", 11800, 0},  {"g729f", "g729f", 0, 0},    {"g729af", "g729af", 0, 0}, {"gsm", "gsm-fr", 0, 0},
    {"amr", "amr", 7400, 0},       {"amrwb", "amr-wb", 0, 0},
};
enum { kFrames = 40 };

/* A buzz that comes and goes, over noise */
static void fillSpeech(gint16* pcm, int samples) {
  guint32 noise = 1;
  for (int n = 0; n < samples; ++n) {
    noise = noise * 1664525 + 1013904223;
    pcm[n] = (gint16)((n / 4000 % 2 == 0 ? 9000 : 0) * sin(n * 0.09) * (n % 73 < 20 ? 1 : 0.3) + (int)(noise >> 27));
  }
}

static GstBuffer* bufferOf(gconstpointer data, gsize bytes, int frame, GstClockTime duration) {
  GstBuffer* const buffer = gst_buffer_new_memdup(data, bytes);
  GST_BUFFER_PTS(buffer) = (GstClockTime)frame * duration;
  GST_BUFFER_DURATION(buffer) = duration;
  return buffer;
}

/* The bytes of what the harness has received, in order */
static GByteArray* take(GstHarness* harness) {
  GByteArray* const bytes = g_byte_array_new();
  for (GstBuffer* buffer; (buffer = gst_harness_try_pull(harness)) != NULL; gst_buffer_unref(buffer)) {
    GstMapInfo map;
    gst_buffer_map(buffer, &map, GST_MAP_READ);
    g_byte_array_append(bytes, map.data, (guint)map.size);
    gst_buffer_unmap(buffer, &map);
  }
  return bytes;
}

static void fail_unless_same(GByteArray* got, gconstpointer expected, gsize bytes, const char* what) {
  fail_unless(got->len == bytes && memcmp(got->data, expected, bytes) == 0, "%s: %u bytes, expected %" G_GSIZE_FORMAT, what,
              got->len, bytes);
  g_byte_array_unref(got);
}

typedef struct {
  const ZppcCodec* codec;
  int samples; /* a buffer */
  GstClockTime duration;
  gint16 pcm[kFrames * 480];
  guint8 payload[kFrames][480];
  int octets[kFrames];
} Stream;

static ZppcOptions optionsOf(const Row* row, int dtx) {
  const ZppcOptions options = {.bitRate = row->bitRate, .dtx = dtx, .variant = row->variant};
  return options;
}

static void encode(Stream* stream, const Row* row, int dtx) {
  stream->codec = zppcFindCodec(row->codec);
  stream->samples = stream->codec->features & ZPPC_FEATURE_SAMPLE_BASED ? 160 : stream->codec->frameSamples;
  stream->duration = gst_util_uint64_scale((guint64)stream->samples, GST_SECOND, (guint64)stream->codec->sampleRate);
  fillSpeech(stream->pcm, kFrames * stream->samples);
  const ZppcOptions options = optionsOf(row, dtx);
  ZppcEncoder* const encoder = zppcEncoderCreate(stream->codec, &options, NULL);
  for (int i = 0; i < kFrames; ++i)
    stream->octets[i] = zppcEncode(encoder, stream->pcm + i * stream->samples, stream->samples, stream->payload[i], 480);
  zppcEncoderDestroy(encoder);
}

static GstHarness* encoderHarness(const Row* row, const Stream* stream) {
  char* const line = row->bitRate ? g_strdup_printf("zppc%senc bitrate=%d", row->element, row->bitRate)
                                  : g_strdup_printf("zppc%senc", row->element);
  GstHarness* const harness = gst_harness_new_parse(line);
  char* const caps =
      g_strdup_printf("audio/x-raw,format=S16LE,layout=interleaved,channels=1,rate=%d", stream->codec->sampleRate);
  gst_harness_set_src_caps_str(harness, caps);
  g_free(caps);
  g_free(line);
  return harness;
}

/* The encoder's caps are the decoder's. */
static GstHarness* decoderHarness(const Row* row, const Stream* stream) {
  GstHarness* const encoder = encoderHarness(row, stream);
  gst_harness_push(encoder, bufferOf(stream->pcm, 2 * (gsize)stream->samples, 0, stream->duration));
  GstCaps* const caps = gst_pad_get_current_caps(encoder->sinkpad);
  char* const name = g_strdup_printf("zppc%sdec", row->element);
  GstHarness* const harness = gst_harness_new(name);
  gst_harness_set_src_caps(harness, caps);
  gst_harness_teardown(encoder);
  g_free(name);
  return harness;
}

GST_START_TEST(payloads_and_speech_are_those_of_zppcodecs) {
  const Row* const row = &rows[__i__];
  Stream* const stream = g_new0(Stream, 1);
  encode(stream, row, 0);
  GstHarness* const encoder = encoderHarness(row, stream);
  GByteArray* const expected = g_byte_array_new();
  for (int i = 0; i < kFrames; ++i) {
    g_byte_array_append(expected, stream->payload[i], (guint)stream->octets[i]);
    gst_harness_push(encoder, bufferOf(stream->pcm + i * stream->samples, 2 * (gsize)stream->samples, i, stream->duration));
  }
  fail_unless_same(take(encoder), expected->data, expected->len, row->codec);

  /* After a flush a stream begins anew. */
  gst_harness_push_event(encoder, gst_event_new_flush_start());
  gst_harness_push_event(encoder, gst_event_new_flush_stop(TRUE));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  gst_harness_push_event(encoder, gst_event_new_segment(&segment));
  for (int i = 0; i < kFrames; ++i)
    gst_harness_push(encoder, bufferOf(stream->pcm + i * stream->samples, 2 * (gsize)stream->samples, i, stream->duration));
  fail_unless_same(take(encoder), expected->data, expected->len, row->codec);
  g_byte_array_unref(expected);
  gst_harness_teardown(encoder);
  g_free(stream);
}
GST_END_TEST;

static GByteArray* decodeDirectly(const Stream* stream, const Row* row, guint64 lost, guint64 unsent) {
  GByteArray* const speech = g_byte_array_new();
  gint16 pcm[480];
  const ZppcOptions options = optionsOf(row, 0);
  ZppcDecoder* const decoder = zppcDecoderCreate(stream->codec, &options, NULL);
  for (int i = 0; i < kFrames; ++i) {
    const gboolean missing = (lost >> i & 1) != 0, nothing = (unsent >> i & 1) != 0;
    const int samples =
        zppcDecode(decoder, missing ? NULL : stream->payload[i], nothing ? 0 : stream->octets[i], pcm, stream->samples);
    fail_unless_equals_int(samples, stream->samples);
    g_byte_array_append(speech, (const guint8*)pcm, 2 * (guint)samples);
  }
  zppcDecoderDestroy(decoder);
  return speech;
}

/* Lost frames: gap events of one frame and of several. Twice, with a flush in between */
GST_START_TEST(gaps_are_concealed_and_flushes_start_anew) {
  const Row* const row = &rows[__i__];
  Stream* const stream = g_new0(Stream, 1);
  encode(stream, row, 0);
  const guint64 lost = 1u << 7 | 7u << 15 | 1u << 30;
  GByteArray* const expected = decodeDirectly(stream, row, lost, 0);
  GstHarness* const decoder = decoderHarness(row, stream);
  for (int pass = 0; pass < 2; ++pass) {
    for (int i = 0; i < kFrames; ++i) {
      int length = 0;
      while (lost >> (i + length) & 1) ++length;
      if (length == 0) {
        GstBuffer* const buffer = bufferOf(stream->payload[i], (gsize)stream->octets[i], i, stream->duration);
        if (i > 0 && (lost >> (i - 1) & 1)) GST_BUFFER_FLAG_SET(buffer, GST_BUFFER_FLAG_DISCONT);
        gst_harness_push(decoder, buffer);
        continue;
      }
      GstEvent* const gap = gst_event_new_gap((GstClockTime)i * stream->duration, (GstClockTime)length * stream->duration);
      gst_event_set_gap_flags(gap, GST_GAP_FLAG_MISSING_DATA);
      gst_harness_push_event(decoder, gap);
      i += length - 1;
    }
    fail_unless_same(take(decoder), expected->data, expected->len, row->codec);
    gst_harness_push_event(decoder, gst_event_new_flush_start());
    gst_harness_push_event(decoder, gst_event_new_flush_stop(TRUE));
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_TIME);
    gst_harness_push_event(decoder, gst_event_new_segment(&segment));
  }
  g_byte_array_unref(expected);
  gst_harness_teardown(decoder);
  g_free(stream);
}
GST_END_TEST;

/* A pause shows in the timestamps alone, as it does over RTP. */
GST_START_TEST(pauses_are_filled_with_comfort_noise) {
  static const Row pausing[] = {
      {"g723", "g723.1", 0, 0}, {"g729a", "g729a", 0, 0}, {"amr", "amr", 0, 0}, {"amrwb", "amr-wb", 0, 0}};
  const Row* const row = &pausing[__i__];
  Stream* const stream = g_new0(Stream, 1);
  encode(stream, row, 1);
  guint64 unsent = 0;
  for (int i = 0; i < kFrames; ++i) unsent |= (guint64)(stream->octets[i] == 0) << i;
  int last = kFrames - 1;
  while (unsent >> last & 1) --last;
  GByteArray* const expected = decodeDirectly(stream, row, 0, unsent);
  GstHarness* const decoder = decoderHarness(row, stream);
  for (int i = 0; i < kFrames; ++i)
    if (stream->octets[i] > 0)
      gst_harness_push(decoder, bufferOf(stream->payload[i], (gsize)stream->octets[i], i, stream->duration));
  fail_unless_same(take(decoder), expected->data, 2 * (gsize)(last + 1) * (gsize)stream->samples, row->codec);
  g_byte_array_unref(expected);
  gst_harness_teardown(decoder);
  g_free(stream);
}
GST_END_TEST;

/* Several payloads in a buffer, as packets have them; and what is no payload, which counts as a lost frame */
GST_START_TEST(buffers_hold_any_number_of_payloads) {
  const Row* const row = &rows[__i__];
  if (strcmp(row->element, "g729i") == 0) return; /* whose payloads do not tell their length */
  Stream* const stream = g_new0(Stream, 1);
  encode(stream, row, 0);
  GByteArray* const expected = decodeDirectly(stream, row, 0, 0);
  GByteArray* const joined = g_byte_array_new();
  GstHarness* const decoder = decoderHarness(row, stream);
  for (int i = 0; i < kFrames; i += 4) {
    g_byte_array_set_size(joined, 0);
    for (int k = 0; k < 4; ++k) g_byte_array_append(joined, stream->payload[i + k], (guint)stream->octets[i + k]);
    gst_harness_push(decoder, bufferOf(joined->data, joined->len, i, stream->duration));
  }
  fail_unless_same(take(decoder), expected->data, expected->len, row->codec);
  guint8 broken[7] = {0x50, 0x50, 0x50, 0x50, 0x50, 0x50, 0x50};
  for (gsize octets = 1; octets <= sizeof broken; octets += 3)
    fail_unless_equals_int(gst_harness_push(decoder, bufferOf(broken, octets, kFrames + (int)octets, stream->duration)),
                           GST_FLOW_OK);
  GByteArray* const heard = take(decoder);
  fail_unless(heard->len > 0);
  g_byte_array_unref(heard);
  g_byte_array_unref(joined);
  g_byte_array_unref(expected);
  gst_harness_teardown(decoder);
  g_free(stream);
}
GST_END_TEST;

GST_START_TEST(the_bit_rate_changes_while_playing) {
  static const Row row = {"amr", "amr", 4750, 0};
  Stream* const stream = g_new0(Stream, 1);
  encode(stream, &row, 0);
  GstHarness* const encoder = encoderHarness(&row, stream);
  const ZppcOptions options = optionsOf(&row, 0);
  ZppcEncoder* const direct = zppcEncoderCreate(stream->codec, &options, NULL);
  for (int i = 0; i < kFrames; ++i) {
    const int bitRate = stream->codec->bitRates[i / 5 % 8];
    g_object_set(gst_harness_find_element(encoder, "zppcamrenc"), "bitrate", bitRate, NULL);
    zppcEncoderSetBitRate(direct, bitRate);
    guint8 payload[32];
    const int octets = zppcEncode(direct, stream->pcm + 160 * i, 160, payload, 32);
    gst_harness_push(encoder, bufferOf(stream->pcm + 160 * i, 320, i, stream->duration));
    fail_unless_same(take(encoder), payload, (gsize)octets, "amr");
  }
  zppcEncoderDestroy(direct);
  gst_harness_teardown(encoder);
  g_free(stream);
}
GST_END_TEST;

static Suite* zppcodecs_suite(void) {
  Suite* const all = suite_create("zppcodecs");
  TCase* const elements = tcase_create("elements");
  suite_add_tcase(all, elements);
  tcase_add_loop_test(elements, payloads_and_speech_are_those_of_zppcodecs, 0, G_N_ELEMENTS(rows));
  tcase_add_loop_test(elements, gaps_are_concealed_and_flushes_start_anew, 0, G_N_ELEMENTS(rows));
  tcase_add_loop_test(elements, buffers_hold_any_number_of_payloads, 0, G_N_ELEMENTS(rows));
  tcase_add_loop_test(elements, pauses_are_filled_with_comfort_noise, 0, 4);
  tcase_add_test(elements, the_bit_rate_changes_while_playing);
  return all;
}

GST_CHECK_MAIN(zppcodecs)

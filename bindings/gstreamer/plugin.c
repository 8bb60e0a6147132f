#include <string.h>

#include "elements.h"

GST_DEBUG_CATEGORY(zppc_debug);

/* The media types are those of GStreamer's payloaders and depayloaders, where there are some. Its ADPCM has the bit order of
 * AAL2, which rtpg726pay turns around where the RTP payload asks for it. Payloads of G.729 at other rates than 8 kbit/s are no
 * audio/G729, whose frames all have 10 octets. */
static const ElementRow rows[] = {
    {"g711-mulaw", "mulaw", "audio/x-mulaw", FALSE, 0},
    {"g711-alaw", "alaw", "audio/x-alaw", FALSE, 0},
    {"g726", "g726", "audio/x-adpcm, layout=(string)g726", TRUE, 1},
    {"g722.1", "g7221", "audio/G7221", TRUE, 0},
    {"g723.1", "g723", "audio/G723", FALSE, 0},
    {"g728", "g728", "audio/G728", FALSE, 0},
    {"g729", "g729", "audio/G729", FALSE, 0},
    {"g729a", "g729a", "audio/G729", FALSE, 0},
    {"g729i", "g729i", "audio/x-g729i", FALSE, 0},
    {"g729f", "g729f", "audio/G729", FALSE, 0},
    {"g729af", "g729af", "audio/G729", FALSE, 0},
    {"gsm-fr", "gsm", "audio/x-gsm", FALSE, 0},
    {"amr", "amr", "audio/AMR", FALSE, 0},
    {"amr-wb", "amrwb", "audio/AMR-WB", FALSE, 0},
};

GstCaps* zppc_payload_caps(const ElementRow* row, int bitRate) {
  const ZppcCodec* const codec = zppcFindCodec(row->codec);
  GstCaps* const caps = gst_caps_from_string(row->caps);
  gst_caps_set_simple(caps, "rate", G_TYPE_INT, codec->sampleRate, "channels", G_TYPE_INT, 1, NULL);
  if (row->rateInCaps && bitRate != 0) {
    gst_caps_set_simple(caps, "bitrate", G_TYPE_INT, bitRate, NULL);
  } else if (row->rateInCaps) {
    GValue list = G_VALUE_INIT, rate = G_VALUE_INIT;
    gst_value_list_init(&list, (guint)codec->bitRateCount);
    g_value_init(&rate, G_TYPE_INT);
    for (int i = 0; i < codec->bitRateCount; ++i) {
      g_value_set_int(&rate, codec->bitRates[i]);
      gst_value_list_append_value(&list, &rate);
    }
    gst_caps_set_value(caps, "bitrate", &list);
    g_value_unset(&list);
  }
  return caps;
}

void zppc_add_templates(GstElementClass* klass, const ElementRow* row, GstPadDirection payloads, GstPadDirection speech) {
  const ZppcCodec* const codec = zppcFindCodec(row->codec);
  GstCaps* const coded = zppc_payload_caps(row, 0);
  GstCaps* const pcm =
      gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, GST_AUDIO_NE(S16), "layout", G_TYPE_STRING, "interleaved",
                          "rate", G_TYPE_INT, codec->sampleRate, "channels", G_TYPE_INT, 1, NULL);
  gst_element_class_add_pad_template(
      klass, gst_pad_template_new(payloads == GST_PAD_SINK ? "sink" : "src", payloads, GST_PAD_ALWAYS, coded));
  gst_element_class_add_pad_template(
      klass, gst_pad_template_new(speech == GST_PAD_SINK ? "sink" : "src", speech, GST_PAD_ALWAYS, pcm));
  gst_caps_unref(coded);
  gst_caps_unref(pcm);
}

int zppc_frame_octets(const ZppcCodec* codec, int bitRate, const guint8* data, int octets) {
  static const guint8 amr[16] = {13, 14, 16, 18, 20, 21, 27, 32, 6, 0, 0, 0, 0, 0, 0, 1};
  static const guint8 amrWb[16] = {18, 24, 33, 37, 41, 47, 51, 59, 61, 6, 0, 0, 0, 0, 1, 1};
  static const guint8 g723[4] = {24, 20, 4, 1};
  int first = octets;
  if (octets == 0) return 0;
  if (strcmp(codec->name, "amr") == 0)
    first = amr[data[0] >> 3 & 15];
  else if (strcmp(codec->name, "amr-wb") == 0)
    first = amrWb[data[0] >> 3 & 15];
  else if (strcmp(codec->name, "g723.1") == 0)
    first = g723[data[0] & 3];
  else if (strcmp(codec->name, "g722.1") == 0)
    first = bitRate * codec->frameSamples / codec->sampleRate / 8;
  else if (strcmp(codec->name, "g729i") != 0 && !(codec->features & ZPPC_FEATURE_SAMPLE_BASED))
    first = octets < codec->maxPayload ? octets : codec->maxPayload; /* frames, and behind them a silence descriptor */
  return first <= octets ? first : 0;
}

static gboolean init(GstPlugin* plugin) {
  GST_DEBUG_CATEGORY_INIT(zppc_debug, "zppc", 0, "speech codecs of zppcodecs");
  gboolean done = TRUE;
  for (gsize i = 0; i < G_N_ELEMENTS(rows); ++i) {
    char* const encoder = g_strdup_printf("zppc%senc", rows[i].element);
    char* const decoder = g_strdup_printf("zppc%sdec", rows[i].element);
    /* Rank none: nothing that plugs elements by itself takes these instead of others. */
    done = done && gst_element_register(plugin, encoder, GST_RANK_NONE, zppc_encoder_register(&rows[i])) &&
           gst_element_register(plugin, decoder, GST_RANK_NONE, zppc_decoder_register(&rows[i]));
    g_free(encoder);
    g_free(decoder);
  }
  return done;
}

#define PACKAGE "zppsc"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zppcodecs, "Bit-exact telephone speech codecs", init, ZPPCODECS_VERSION,
                  GST_LICENSE_UNKNOWN, "zppsc", "zppsc")

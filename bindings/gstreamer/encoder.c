/* Encoders: frames of speech in, a buffer with the payload of each out. */
#include <string.h>

#include "elements.h"

typedef struct {
  GstAudioEncoderClass parent;
  const ElementRow* row;
  const ZppcCodec* codec;
} EncoderClass;

typedef struct {
  GstAudioEncoder parent;
  ZppcOptions options;
  int bitRate;       /* the property; the options' until the next frame */
  GstClockTime next; /* where the last payload, or the pause behind it, ends */
  void* memory;
  gsize bytes;
  ZppcEncoder* stream;
} Encoder;

enum { PROP_0, PROP_BITRATE, PROP_DTX, PROP_VARIANT };
enum { kSampleBasedMilliseconds = 20 };

static const EncoderClass* classOf(gpointer object) { return G_TYPE_INSTANCE_GET_CLASS(object, 0, EncoderClass); }

static gboolean restart(Encoder* self) {
  const EncoderClass* const klass = classOf(self);
  GST_OBJECT_LOCK(self);
  self->options.bitRate = self->bitRate;
  GST_OBJECT_UNLOCK(self);
  self->next = GST_CLOCK_TIME_NONE;
  int error = 0;
  self->stream = zppcEncoderInit(self->memory, self->bytes, klass->codec, &self->options, &error);
  if (self->stream == NULL)
    GST_ELEMENT_ERROR(self, LIBRARY, SETTINGS, ("%s: %s", klass->codec->name, zppcErrorText(error)), (NULL));
  return self->stream != NULL;
}

static gboolean start(GstAudioEncoder* encoder) {
  Encoder* const self = (Encoder*)encoder;
  self->bytes = (gsize)zppcEncoderSize(classOf(self)->codec);
  self->memory = g_malloc(self->bytes);
  return TRUE;
}

static gboolean stop(GstAudioEncoder* encoder) {
  Encoder* const self = (Encoder*)encoder;
  g_clear_pointer(&self->memory, g_free);
  self->stream = NULL;
  return TRUE;
}

static gboolean setFormat(GstAudioEncoder* encoder, GstAudioInfo* info) {
  Encoder* const self = (Encoder*)encoder;
  const EncoderClass* const klass = classOf(self);
  const ZppcCodec* const codec = klass->codec;
  (void)info;
  if (!restart(self)) return FALSE;
  const int samples =
      codec->features & ZPPC_FEATURE_SAMPLE_BASED ? codec->sampleRate / 1000 * kSampleBasedMilliseconds : codec->frameSamples;
  gst_audio_encoder_set_frame_samples_min(encoder, samples);
  gst_audio_encoder_set_frame_samples_max(encoder, samples);
  gst_audio_encoder_set_frame_max(encoder, 1);
  gst_audio_encoder_set_hard_min(encoder, TRUE); /* silence completes the last frame */
  const GstClockTime latency = gst_util_uint64_scale((guint64)samples, GST_SECOND, (guint64)codec->sampleRate);
  gst_audio_encoder_set_latency(encoder, latency, latency);

  GstCaps* const caps =
      zppc_payload_caps(klass->row, self->options.bitRate != 0 ? self->options.bitRate : codec->defaultBitRate);
  const gboolean set = gst_audio_encoder_set_output_format(encoder, caps);
  gst_caps_unref(caps);
  return set;
}

static GstFlowReturn handleFrame(GstAudioEncoder* encoder, GstBuffer* buffer) {
  Encoder* const self = (Encoder*)encoder;
  const ZppcCodec* const codec = classOf(self)->codec;
  if (buffer == NULL) return GST_FLOW_OK; /* nothing waits here */

  GST_OBJECT_LOCK(self);
  const int bitRate = self->bitRate;
  GST_OBJECT_UNLOCK(self);
  if (bitRate != self->options.bitRate && codec->features & ZPPC_FEATURE_RATE_SWITCH) {
    self->options.bitRate = bitRate;
    if (zppcEncoderSetBitRate(self->stream, bitRate != 0 ? bitRate : codec->defaultBitRate) < 0)
      GST_WARNING_OBJECT(self, "%s does not have %d bit/s; the bit rate stays", codec->name, bitRate);
  }

  GstMapInfo pcm, payload;
  if (!gst_buffer_map(buffer, &pcm, GST_MAP_READ)) return GST_FLOW_ERROR;
  const int samples = (int)(pcm.size / 2);
  const int capacity = samples > codec->frameSamples ? samples / codec->frameSamples * codec->maxPayload : codec->maxPayload;
  GstBuffer* const out = gst_audio_encoder_allocate_output_buffer(encoder, (gsize)capacity);
  gst_buffer_map(out, &payload, GST_MAP_WRITE);
  const int octets = zppcEncode(self->stream, (const gint16*)pcm.data, samples, payload.data, capacity);
  gst_buffer_unmap(out, &payload);
  gst_buffer_unmap(buffer, &pcm);
  if (octets > 0) {
    gst_buffer_set_size(out, octets);
    return gst_audio_encoder_finish_frame(encoder, out, samples);
  }
  gst_buffer_unref(out);
  if (octets < 0) {
    GST_ELEMENT_ERROR(self, STREAM, ENCODE, ("%s: %s", codec->name, zppcErrorText(octets)), (NULL));
    return GST_FLOW_ERROR;
  }
  /* Nothing is sent. The event tells a decoder in the same pipeline so; payloaders let time pass. */
  const GstFlowReturn flow = gst_audio_encoder_finish_frame(encoder, NULL, samples);
  if (GST_CLOCK_TIME_IS_VALID(self->next)) {
    const GstClockTime duration = gst_util_uint64_scale((guint64)samples, GST_SECOND, (guint64)codec->sampleRate);
    gst_pad_push_event(GST_AUDIO_ENCODER_SRC_PAD(encoder), gst_event_new_gap(self->next, duration));
    self->next += duration;
  }
  return flow;
}

static GstFlowReturn prePush(GstAudioEncoder* encoder, GstBuffer** buffer) {
  ((Encoder*)encoder)->next =
      GST_BUFFER_PTS_IS_VALID(*buffer) ? GST_BUFFER_PTS(*buffer) + GST_BUFFER_DURATION(*buffer) : GST_CLOCK_TIME_NONE;
  return GST_FLOW_OK;
}

static void flush(GstAudioEncoder* encoder) {
  Encoder* const self = (Encoder*)encoder;
  if (self->stream != NULL) (void)restart(self);
}

static void setProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) {
  Encoder* const self = (Encoder*)object;
  GST_OBJECT_LOCK(self);
  switch (id) {
    case PROP_BITRATE:
      self->bitRate = g_value_get_int(value);
      break;
    case PROP_DTX:
      self->options.dtx = g_value_get_boolean(value);
      break;
    case PROP_VARIANT:
      self->options.variant = g_value_get_int(value);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
  }
  GST_OBJECT_UNLOCK(self);
}

static void getProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) {
  Encoder* const self = (Encoder*)object;
  GST_OBJECT_LOCK(self);
  switch (id) {
    case PROP_BITRATE:
      g_value_set_int(value, self->bitRate);
      break;
    case PROP_DTX:
      g_value_set_boolean(value, self->options.dtx);
      break;
    case PROP_VARIANT:
      g_value_set_int(value, self->options.variant);
      break;
    default:
      G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
  }
  GST_OBJECT_UNLOCK(self);
}

static char* bitRateBlurb(const ZppcCodec* codec) {
  GString* const text = g_string_new("Bit rate in bit/s, 0 for the default:");
  for (int i = 0; i < codec->bitRateCount; ++i) g_string_append_printf(text, " %d", codec->bitRates[i]);
  return g_string_free(text, FALSE);
}

static void classInit(gpointer data, gpointer rowData) {
  EncoderClass* const klass = data;
  const ElementRow* const row = rowData;
  const ZppcCodec* const codec = zppcFindCodec(row->codec);
  klass->row = row;
  klass->codec = codec;

  GObjectClass* const object = G_OBJECT_CLASS(klass);
  object->set_property = setProperty;
  object->get_property = getProperty;
  const GParamFlags flags = G_PARAM_READWRITE | G_PARAM_STATIC_NAME | G_PARAM_STATIC_NICK | GST_PARAM_MUTABLE_READY;
  char* const blurb = bitRateBlurb(codec);
  const GParamFlags live = codec->features & ZPPC_FEATURE_RATE_SWITCH ? GST_PARAM_MUTABLE_PLAYING : 0;
  g_object_class_install_property(
      object, PROP_BITRATE,
      g_param_spec_int("bitrate", "Bit rate", blurb, 0, codec->bitRates[codec->bitRateCount - 1], 0, flags | live));
  g_free(blurb);
  if (codec->features & ZPPC_FEATURE_DTX)
    g_object_class_install_property(
        object, PROP_DTX,
        g_param_spec_boolean("dtx", "DTX", "Discontinuous transmission: send little or nothing in pauses", FALSE, flags));
  g_object_class_install_property(
      object, PROP_VARIANT,
      g_param_spec_int("variant", "Variant", "A choice of the codec's own, see zppcodecs.h", 0, 8, row->variant, flags));

  zppc_add_templates(GST_ELEMENT_CLASS(klass), row, GST_PAD_SRC, GST_PAD_SINK);
  char* const name = g_strdup_printf("%s encoder", codec->standard);
  gst_element_class_set_metadata(GST_ELEMENT_CLASS(klass), name, "Codec/Encoder/Audio", name, "zppsc");
  g_free(name);

  GstAudioEncoderClass* const base = GST_AUDIO_ENCODER_CLASS(klass);
  base->start = start;
  base->stop = stop;
  base->set_format = setFormat;
  base->handle_frame = handleFrame;
  base->pre_push = prePush;
  base->flush = flush;
}

static void init(GTypeInstance* instance, gpointer klass) {
  ((Encoder*)instance)->options.variant = ((EncoderClass*)klass)->row->variant;
}

GType zppc_encoder_register(const ElementRow* row) {
  const GTypeInfo info = {.class_size = sizeof(EncoderClass),
                          .class_init = classInit,
                          .class_data = row,
                          .instance_size = sizeof(Encoder),
                          .instance_init = init};
  char* const name = g_strdup_printf("Zppc-%s-encoder", row->element);
  const GType type = g_type_register_static(GST_TYPE_AUDIO_ENCODER, name, &info, 0);
  g_free(name);
  return type;
}

"""Speech codecs, bit-exact: complete codecs here, their primitives in zppcodecs.primitives, files in zppcodecs.storage.

    import zppcodecs
    encoder = zppcodecs.Encoder("g729", dtx=True)
    decoder = zppcodecs.Decoder("g729")
    heard = decoder.decode(encoder.encode(frame))
"""
from .codecs import Codec, CodecError, Decoder, Encoder, Feature, codecs, decode, encode, find_codec, roundtrip, version

__all__ = [
    "Codec", "CodecError", "Decoder", "Encoder", "Feature", "codecs", "decode", "encode", "find_codec", "roundtrip", "version",
]  # fmt: skip

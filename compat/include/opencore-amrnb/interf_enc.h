/* AMR-NB by the interface of libopencore-amrnb: the encoder. */
#ifndef OPENCORE_AMRNB_INTERF_ENC_H
#define OPENCORE_AMRNB_INTERF_ENC_H

#ifdef __cplusplus
extern "C" {
#endif

enum Mode { MR475, MR515, MR59, MR67, MR74, MR795, MR102, MR122, MRDTX, N_MODES };

/* dtx: discontinuous transmission where it is not 0. Null where there is no memory. */
void* Encoder_Interface_init(int dtx);
void Encoder_Interface_exit(void* state);

/* Codes 160 samples to a frame of the storage format of RFC 4867. Returns its octets, 1 to 32; where nothing is sent, 1: a
 * frame without data. mode: MR475 to MR122; another value keeps the rate of the frame before. forceSpeech counts for nothing.
 */
int Encoder_Interface_Encode(void* state, enum Mode mode, const short* speech, unsigned char* out, int forceSpeech);

#ifdef __cplusplus
}
#endif

#endif

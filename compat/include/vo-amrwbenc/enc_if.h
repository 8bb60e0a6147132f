/* AMR-WB by the interface of libvo-amrwbenc: the encoder. */
#ifndef VO_AMRWBENC_ENC_IF_H
#define VO_AMRWBENC_ENC_IF_H

#ifdef __cplusplus
extern "C" {
#endif

/* Null where there is no memory. */
void* E_IF_init(void);
void E_IF_exit(void* state);

/* Codes 320 samples to a frame of the storage format of RFC 4867. Returns its octets, 1 to 61; where nothing is sent, 1: a
 * frame without data. mode: 0 (6.60 kbit/s) to 8 (23.85); any other is 8. dtx: discontinuous transmission where it is not 0; a
 * stream whose dtx changes begins anew. */
int E_IF_encode(void* state, int mode, const short* speech, unsigned char* out, int dtx);

#ifdef __cplusplus
}
#endif

#endif

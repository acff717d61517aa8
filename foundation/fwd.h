// Declares the classes of this folder.
#pragma once

template <class T> class ccPair;
template <int N> class ccVector;
template <int N> class ccMatrix;
template <int N> class ccXform;
template <class T> class ccPtrHandle;
template <class T> class ccPtrHandle_const;
template <class T> class ccPelRoot;
template <class T> class ccPelBuffer;
template <class T> class ccPelBuffer_const;
class cc2Rigid;
class cc2XformBase;
class cc2XformCache;
class cc_Instantiator;
class cc_PelRoot;
class cc_Resource;
class ccArchive;
class ccCommunicator;
class ccDegree;
class ccEvent;
class ccException;
class ccLock;
class ccMutex;
class ccPackedRGB16Pel;
class ccPackedRGB32Pel;
class ccPelRect;
class ccPelRootPool;
class ccPersistent;
class ccPoint;
class ccRadian;
class ccRepBase;
class ccSemaphore;
class ccStringLiteral;

// The legacy statuses and the map between their numbers and OAK_RETCODE. Rests
// on the list of codes alone; called by the interfaces that still speak the
// numbers of the previous generation, and by the tools.
#include "berror_legacy.h"

// A row is a line.
// clang-format off

// Four rows, -235 to -232, hold name and text in one string and have no text of
// their own: they ran together when the table was first written. Callers of the
// legacy interface see them so, and they stay.
constexpr OAK_ERROR oak_errors_old[OAK_ERRORS_OLD_ROWS] = {
    {-9021, "SYS_BADHASH", "hash malformed"},
    {-9020, "SYS_INV_RHS_HANDLE", "record hash handle invalid"},
    {-9019, "SYS_FILEMODIFIED", "file modified by someone else"},
    {-9018, "SYS_EOF", "read past the end of a file"},
    {-9017, "SYS_DCHAIN", "delete chain broken"},
    {-9016, "SYS_PZNEXT", "next slot in page zero invalid"},
    {-9015, "SYS_FILESIZE", "file size inconsistent with its pages"},
    {-9014, "SYS_INVEXTEND", "file extended to an invalid size"},
    {-9013, "SYS_PZACCESS", "page zero could not be accessed"},
    {-9012, "SYS_INVPGSIZE", "page size invalid"},
    {-9011, "SYS_INVPGCOUNT", "page count invalid"},
    {-9010, "SYS_HASHCYCLE", "cycle in a hash chain"},
    {-9009, "SYS_INVHOLD", "page hold count invalid"},
    {-9007, "SYS_INVSORT", "sort order invalid"},
    {-9006, "SYS_INVFLDTYPE", "field type unknown"},
    {-9005, "SYS_BADOPTKEY", "optional key state inconsistent"},
    {-9004, "SYS_BADFREE", "memory freed that was not allocated"},
    {-9003, "SYS_KEYEXIST", "key inserted that exists already"},
    {-9002, "SYS_BADTREE", "B-tree malformed"},
    {-966, "S_DBDREAD", "dictionary could not be read"},
    {-965, "S_REPLOG_ERROR", "replication log could not be processed"},
    {-961, "S_JNIERROR", "Java interface call failed"},
    {-940, "S_EACCESS", "file in use by another process"},
    {-939, "S_READONLY", "database is read-only"},
    {-933, "S_FCN_SEQUENCE", "function called out of sequence"},
    {-932, "S_BUFFER_TOO_SMALL", "buffer too small for the result"},
    {-931, "S_INVLOGFILE", "log file invalid"},
    {-929, "S_BLOBERR", "large object file inconsistent"},
    {-928, "S_BLOBPOS", "position within a large object invalid"},
    {-927, "S_BLOBUPD", "large object cannot be updated in this way"},
    {-926, "S_NOTBLOB", "field is not a large object"},
    {-924, "S_INVNULL", "argument cannot be null"},
    {-922, "S_LMBUSY", "lock manager is busy"},
    {-921, "S_DUPUSERID", "user identifier in use already"},
    {-919, "S_BADWRITE", "fewer bytes written than given"},
    {-918, "S_VARDATAPTR", "pointer to variable-length data invalid"},
    {-916, "S_DEBUG", "check of the debugging build failed"},
    {-914, "S_BADREAD", "fewer bytes read than expected"},
    {-911, "S_VARDATALEN", "length of variable-length data invalid"},
    {-910, "S_KEYERR", "key file inconsistent with its records"},
    {-909, "S_RECLIMIT", "record limit of the file reached"},
    {-908, "S_BADLOCKS", "lock list inconsistent"},
    {-906, "S_COMMITFAILED", "transaction could not be committed"},
    {-905, "S_NOFILE", "file could not be opened"},
    {-904, "S_NOMEMORY", "memory exhausted"},
    {-903, "S_MKDIR", "directory could not be created"},
    {-902, "S_FAULT", "memory access fault"},
    {-901, "S_SYSERR", "system error"},
    {-900, "S_NOSPACE", "no space left on the device"},
    {-813, "S_QA_NO_GLOBAL_ENC", "test requires a global encryption key"},
    {-812, "S_QA_ILLEGAL_TFS_COMBINATION", "illegal combination of servers in a test"},
    {-811, "S_QA_TEST_TIMEOUT", "test exceeded its time limit"},
    {-810, "S_QA_ILLEGAL_FILENAME", "illegal file name in a test"},
    {-809, "S_QA_ILLEGAL_NAMESPACE", "illegal namespace in a test"},
    {-808, "S_QA_FEATURE_NOTIMPLEMENTED", "feature under test is not implemented"},
    {-807, "S_QA_ILLEGAL_USE_OF_STOP_WATCH", "stop watch started or stopped out of turn"},
    {-806, "S_QA_HAS_FLOAT_REQUIRED", "test requires floating-point support"},
    {-805, "S_QA_CASE_FAILED", "test case failed"},
    {-804, "S_QA_NEED_DESCRIPTION", "test case needs a description"},
    {-803, "S_QA_HELP", "help of the test program displayed"},
    {-802, "S_QA_MISSING_ARGUMENT", "argument of the test program missing"},
    {-801, "S_QA_NO_TESTS_SELECTED", "no tests selected"},
    {-800, "S_QA_CASE_DESCRIBED", "test cases described"},
    {-703, "EMBED_CONTENT_DONT_MATCH", "embedded file differs from its hash"},
    {-702, "EMBED_ILLEGAL_NAMESPACE", "illegal namespace for embedded files"},
    {-701, "EMBED_UNKNOWN_COMMAND", "unknown command for embedded files"},
    {-700, "EMBED_FILE_NOT_FOUND", "embedded file not found"},
    {-512, "DB_IMP_DUPMEM", "member imported into a set twice"},
    {-511, "DB_IMP_INVDB", "database to import into is invalid"},
    {-510, "DB_IMP_INVREF", "reference to import is invalid"},
    {-509, "DB_IMP_INVOWN", "owner to import is invalid"},
    {-508, "DB_IMP_INVMEM", "member to import is invalid"},
    {-507, "DB_IMP_NOKEY", "key to identify an imported record is missing"},
    {-506, "DB_IMP_NOFLD", "field to import is missing"},
    {-505, "DB_IMP_FLDSIZE", "size of an imported field does not fit"},
    {-504, "DB_IMP_FLDTYPE", "type of an imported field does not fit"},
    {-503, "DB_IMP_INVSET", "set to import is unknown"},
    {-502, "DB_IMP_INVFLD", "field to import is unknown"},
    {-501, "DB_IMP_INVREC", "record to import is unknown"},
    {-235, "S_TX_DISABLEDHTTP listener is disabled", nullptr},
    {-234, "S_TX_NO_TFSNo TFS available for this TFS library", nullptr},
    {-233, "S_TX_NO_SQLNo SQL available for this TFS library", nullptr},
    {-232, "S_TX_NO_MIRNo MIR available for this TFS library", nullptr},
    {-231, "S_TX_INI_NOTEDITED", "initialization file was not edited"},
    {-230, "S_TX_INI_EDITED", "initialization file edited by another program"},
    {-229, "S_TX_BLOCKED", "server blocked by another operation"},
    {-228, "S_TX_IASYNC_ON", "not allowed while internal asynchronous processing is on"},
    {-227, "S_TX_INVTFSTYPE", "server type invalid"},
    {-226, "S_TX_NO_REMOTE", "remote connections are not available"},
    {-225, "S_TX_DOCROOT_USED", "document root in use by another server"},
    {-224, "S_TX_TFSNOTINITED", "server not initialized"},
    {-223, "S_TX_NO_FILE_ACCESS", "file access through the server not allowed"},
    {-222, "S_TX_ILLEGAL_MOD", "page modified outside a transaction"},
    {-221, "S_TX_TXPRECOMMIT", "transaction is precommitted"},
    {-220, "S_TX_INVTFS", "server handle invalid"},
    {-219, "S_TX_DBOPEN", "database open in the server"},
    {-218, "S_TX_INVINI", "initialization file invalid"},
    {-217, "S_TX_ACCEPT", "connection could not be accepted"},
    {-216, "S_TX_LISTEN", "port could not be listened on"},
    {-215, "S_TX_HOSTNAME", "host name could not be resolved"},
    {-214, "S_TX_CONNECT", "connection to the server failed"},
    {-213, "S_TX_DBACTIVE", "database active in the server"},
    {-212, "S_TX_INVDB", "database unknown to the server"},
    {-211, "S_TX_TRUNCATED", "network message truncated"},
    {-210, "S_TX_INVFILE", "file unknown to the server"},
    {-209, "S_TX_TXNOTACTIVE", "transaction not active in the server"},
    {-208, "S_TX_NOTVERIFIED", "user not verified by the server"},
    {-207, "S_TX_INVUSERID", "user unknown to the server"},
    {-206, "S_TX_MAXUSERS", "user limit of the server reached"},
    {-205, "S_TX_DUPUSER", "user known to the server already"},
    {-204, "S_TX_WRITEFAIL", "server failed to write"},
    {-203, "S_TX_NETWRITE", "network write failed"},
    {-202, "S_TX_NETREAD", "network read failed"},
    {-201, "S_TX_NOPAGE", "page does not exist in the file"},
    {-200, "S_TX_ERROR", "general transport error"},
    {-132, "S_REFINTEGRITY", "referential integrity violated"},
    {-131, "S_LEGACY_API", "not allowed through this interface"},
    {-130, "S_CRYPT_MISMATCH", "encryption differs from that of the database"},
    {-129, "S_INVDOCROOT", "document root invalid"},
    {-128, "S_INVENCTYPE", "encryption type invalid"},
    {-127, "S_REP_NODB", "database to replicate not found"},
    {-126, "S_REP_INVOP", "operation not allowed on a replica"},
    {-125, "S_LOG_INVATTR", "replication log attribute invalid"},
    {-124, "S_LOG_INVFLAG", "replication log flag invalid"},
    {-123, "S_LOG_OUTDATED", "replication log outdated"},
    {-122, "S_LOG_SKIPPED", "replication log skipped"},
    {-121, "S_LOG_NOSCHEMA", "replication log holds no schema"},
    {-120, "S_LOG_INVINDEX", "replication log index invalid"},
    {-119, "S_LOG_INVHANDLE", "replication log handle invalid"},
    {-118, "S_TYPE_UNKNOWN", "data type unknown"},
    {-117, "S_TYPE_MISMATCH", "data types do not match"},
    {-116, "S_MULTIPLE_DBS", "only one database allowed"},
    {-115, "S_INV_KEYLEN", "key length invalid"},
    {-114, "S_RECORD_GONE", "record of the cursor deleted"},
    {-113, "S_BLOB_BAD_SIZE", "size of a large object invalid"},
    {-112, "S_UNION_DBDMISMATCH", "dictionaries of a union do not match"},
    {-111, "S_INV_ITERATION", "cursor cannot be moved in this way"},
    {-110, "S_INVCURSOR_REC", "record type not in the cursor"},
    {-109, "S_INVCURSOR_FLD", "field not in the cursor's record type"},
    {-108, "S_NOT_ENCRYPTED", "database is not encrypted"},
    {-107, "S_INVENCRYPT", "encryption key invalid"},
    {-106, "S_SET_GONE", "owner of the cursor's set deleted"},
    {-105, "S_LOST_POSITION", "cursor lost its position"},
    {-104, "S_NOT_RELATED", "record not related to the given one"},
    {-103, "S_INVCURSOR_OP", "operation not allowed on this cursor"},
    {-102, "S_NOTSINGLETON", "cursor holds more than one record"},
    {-101, "S_INVCURSOR", "cursor invalid"},
    {-100, "S_TRUNCATE", "data truncated"},
    {-99, "S_INVBCD", "decimal value invalid"},
    {-98, "S_INVUTF", "UTF string invalid"},
    {-97, "S_RECISINSET", "record type takes part in a set"},
    {-96, "S_FILEISSHARED", "file is shared with another database"},
    {-95, "S_DBA_RANGE", "database address out of range"},
    {-94, "S_MIRSYNC_TIMEOUT", "mirror synchronization timed out"},
    {-93, "S_DBDMISMATCH", "dictionary differs from that of the database"},
    {-92, "S_NOMIRSERVER", "no mirror server available"},
    {-91, "S_IN_INIT_TRANS", "not allowed during initialization"},
    {-90, "S_IN_CHANGE_TRANS", "not allowed in an update transaction"},
    {-89, "S_MIRSYNC_ERROR", "mirror synchronization failed"},
    {-88, "S_MIRSYNC_DENIED", "mirror synchronization denied"},
    {-87, "S_SLAVEREADONLY", "mirrored copy is read-only"},
    {-86, "S_UNOMISMATCH", "unions do not match"},
    {-85, "S_REPOAKSERR", "replication to another server failed"},
    {-84, "S_INVDBASLOT", "slot of a database address invalid"},
    {-83, "S_INVDBAFILE", "file of a database address invalid"},
    {-82, "S_INVURLARGFMT", "format of URL arguments invalid"},
    {-81, "S_SHUTDOWN", "server is shutting down"},
    {-80, "S_DBALREADYOPEN", "database is open already"},
    {-79, "S_INROT", "not allowed in a read-only transaction"},
    {-78, "S_HASWRITELOCKS", "not allowed while write locks are held"},
    {-77, "S_NOROTACTIVE", "no read-only transaction active"},
    {-76, "S_ROTACTIVE", "read-only transaction active"},
    {-75, "S_RECOVERY_FAILED", "recovery failed"},
    {-74, "S_REPLOGSTRING", "string in the replication log invalid"},
    {-73, "S_REPLOGENDIAN", "byte order of the replication log differs"},
    {-72, "S_REPLOGDBA", "database address in the replication log invalid"},
    {-71, "S_REPLOGVER", "version of the replication log unknown"},
    {-70, "S_INVDBD", "dictionary invalid"},
    {-69, "S_DBACTIVE", "database in use by other users"},
    {-68, "S_DDLERROR", "errors in the schema definition"},
    {-67, "S_TRPRECOMMITTED", "transaction is precommitted already"},
    {-66, "S_DELCIRC", "records to delete refer to each other in a circle"},
    {-65, "S_INVSTRING", "string invalid"},
    {-64, "S_INVENDIAN", "byte order invalid"},
    {-63, "S_INVDBA", "database address format invalid"},
    {-62, "S_INVFILE", "file invalid"},
    {-61, "S_INVTFSSPEC", "form of a server address invalid"},
    {-60, "S_REPINVLOCK", "lock invalid for replication"},
    {-58, "S_REPBADTYPE", "type invalid for replication"},
    {-57, "S_IMPBADDATA", "data to import does not fit the schema"},
    {-56, "S_IMPBADXML", "XML to import malformed"},
    {-55, "S_DEFUNCT", "function no longer exists"},
    {-54, "S_NOTIMPLEMENTED", "feature not implemented"},
    {-53, "S_INVMODE", "open mode invalid"},
    {-52, "S_INVTASK", "task invalid"},
    {-51, "S_INVFORUNIONDB", "operation not allowed on a database union"},
    {-50, "S_INVID", "identifier invalid"},
    {-49, "S_INVPTR", "pointer invalid"},
    {-48, "S_DBCLOSE", "database must be closed"},
    {-47, "S_INVINDEX", "index invalid"},
    {-46, "S_NOTYPE", "no current record type"},
    {-45, "S_INVARG", "argument invalid"},
    {-44, "S_INVPKEY", "primary key declaration invalid"},
    {-43, "S_INVREPHANDLE", "replication handle invalid"},
    {-42, "S_BADUSERID", "user identifier not recognized"},
    {-41, "S_INVKEY", "key invalid"},
    {-40, "S_INVNUM", "number does not name a schema object"},
    {-39, "S_COMKEY", "compound key value invalid"},
    {-38, "S_BADFIELD", "field name unknown"},
    {-37, "S_NOTOPTKEY", "key is not optional"},
    {-36, "S_INVTRID", "transaction handle invalid"},
    {-35, "S_NAMELEN", "name too long"},
    {-34, "S_USERID", "user identifier invalid"},
    {-33, "S_STATIC", "file is static and cannot be changed"},
    {-32, "S_EXCLUSIVE", "database open for exclusive use"},
    {-31, "S_NOTRANS", "no update transaction active"},
    {-30, "S_DBOPENED", "not allowed once a database is open"},
    {-29, "S_TRFREE", "lock cannot be freed in a transaction"},
    {-28, "S_DBD_NONAMES", "dictionary holds no names"},
    {-27, "S_TRNOTACT", "no transaction active"},
    {-26, "S_TRACTIVE", "transaction active already"},
    {-25, "S_TRANSID", "transaction identifier missing"},
    {-24, "S_NOTLOCKED", "record type or set not locked"},
    {-23, "S_NOTFREE", "record type or set locked already"},
    {-22, "S_DELSYS", "system record cannot be deleted"},
    {-21, "S_INCOMPAT", "file format incompatible with this version"},
    {-20, "S_SETPAGES", "page count cannot be set"},
    {-19, "S_INVMEM", "record type is not the member of the set"},
    {-18, "S_INVOWN", "record type is not the owner of the set"},
    {-17, "S_NOTKEY", "field is not a key"},
    {-16, "S_NOTCON", "record not connected to the set"},
    {-15, "S_ISCOMKEY", "key is a compound key"},
    {-14, "S_ISOWNED", "record is connected to the set already"},
    {-13, "S_ISMEM", "record is a member of a set"},
    {-12, "S_HASMEM", "record owns members of a set"},
    {-11, "S_BADTYPE", "lock type invalid"},
    {-10, "S_KEYREQD", "key required"},
    {-9, "S_NOCM", "no current member"},
    {-8, "S_NOCO", "no current owner"},
    {-7, "S_NOCR", "no current record"},
    {-6, "S_INVADDR", "database address invalid"},
    {-5, "S_INVFLD", "field invalid"},
    {-4, "S_INVDB", "database invalid"},
    {-3, "S_INVREC", "record type invalid"},
    {-2, "S_INVSET", "set invalid"},
    {-1, "S_DBOPEN", "database not open"},
    {0, "S_OKAY", "normal return"},
    {1, "S_EOS", "end of set"},
    {2, "S_NOTFOUND", "record not found"},
    {3, "S_DUPLICATE", "key value exists already"},
    {4, "S_KEYSEQ", "key function called out of sequence"},
    {5, "S_UNAVAIL", "lock not available"},
    {6, "S_DELETED", "record deleted since it was last read"},
    {7, "S_UPDATED", "record updated since it was last read"},
    {10, "S_SETCLASH", "set changed by another user"},
    {11, "S_EOF", "end of file"},
    {12, "S_TX_TIMEOUT", "time limit reached"},
    {13, "S_REFERENCING", "record refers to another"},
    {14, "S_EOC", "end of cursor"},
    {15, "S_TX_INI_UPDATED", "initialization file updated"},
    {16, "S_FILECHANGED", "file changed since it was last read"},
    {17, "S_UPDATE_ABORTED", "update aborted"},
    {18, "S_SNAPSHOT_ENDED", "snapshot ended"},
    {19, "S_READ_ENDED", "read transaction ended"},
    {20, "S_READ_TRUNCATE", "data read was truncated"},
    {21, "S_OKAY_WITH_INFO", "normal return with information"},
    {22, "S_NOT_IN_CURSOR", "record not in the cursor"},
    {23, "S_REPLOG_EOF", "end of the replication log"},
    {24, "S_REP_MASTEREMPTY", "master of the replication is empty"},
    {25, "S_SKIP", "transaction in the log skipped"},
    {26, "S_NEEDS_FLUSH", "changes are waiting to be flushed"},
    {27, "S_NOMORE_PAGE", "no further pages"},
};

// Codes that stand for a legacy number which stands for them.
#define OAK_LEGACY_PAIRS(X) \
    X(sEOS, 1) \
    X(sTFS_SHUTDOWN, -81) \
    X(sREADENDED, 19) \
    X(sSNAPSHOTENDED, 18) \
    X(sUPDATEABORTED, 17) \
    X(sSETCLASH, 10) \
    X(sNOMOREPAGE, 27) \
    X(sSKIPTRANS, 25) \
    X(sFILECHANGED, 16) \
    X(sREFERENCING, 13) \
    X(sTRUNCATE, 20) \
    X(sENDOFCURSOR, 14) \
    X(sOKAYWITHINFO, 21) \
    X(sTIMEOUT, 12) \
    X(sDUPLICATE, 3) \
    X(sNOTFOUND, 2) \
    X(sOKAY, 0) \
    X(eNOMEMORY, -904) \
    X(eDBOPEN, -80) \
    X(eEXCLUSIVE, -32) \
    X(eTRACTIVE, -26) \
    X(eNOSTART, -27) \
    X(eNOSTARTUPDATE, -31) \
    X(eNOTLOCKED, -24) \
    X(eNOTFREE, -23) \
    X(eREFINTEGRITY, -132) \
    X(eSNAPSHOTACTIVE, -76) \
    X(eSNAPSHOTNOTACTIVE, -77) \
    X(eOPENMODE, -53) \
    X(eNOTIMPLEMENTED, -54) \
    X(eINVNULLARG, -924) \
    X(eCIRTABDELETE, -66) \
    X(eFILEOPEN, -905) \
    X(eUNOMISMATCH, -86) \
    X(eNOSPACE, -900) \
    X(ePRECOMMITTED, -67) \
    X(eINVDBNAMESPEC, -4) \
    X(eINVTFSSPEC, -61) \
    X(eFILEINUSE, -940) \
    X(eTRUNCATED, -100) \
    X(eBADREAD, -914) \
    X(eBADWRITE, -919) \
    X(eINVBCD, -99) \
    X(eDUPUSERID, -921) \
    X(eREADONLY, -939) \
    X(eMKDIR, -903) \
    X(eRECOVERYFAILED, -75) \
    X(eBADDATALEN, -115) \
    X(eINVROWIDVAL, -6) \
    X(eTYPEMISMATCH, -117) \
    X(eROWIDRANGE, -95) \
    X(eROWLIMIT, -909) \
    X(eINVUTF, -98) \
    X(eDBNOTCLOSED, -48) \
    X(eINVARG, -45) \
    X(eINVID, -50) \
    X(eHASMEMBERS, -12) \
    X(eUNAVAIL, 5) \
    X(eDEFUNCT, -55) \
    X(eINVTASKID, -52) \
    X(eINVCURSORID, -101) \
    X(eINVTRANSID, -36) \
    X(eNOTRANSID, -25) \
    X(eINVFORUNION, -51) \
    X(eNOTKEY, -17) \
    X(eNOTBLOB, -926) \
    X(eINVLOCKTYPE, -11) \
    X(eKEYREQD, -10) \
    X(eINVCOLID, -5) \
    X(eINVTABID, -3) \
    X(eINVREFID, -2) \
    X(eINVIDENTIFIER, -40) \
    X(eINVCURSOROP, -103) \
    X(eDELETED, 6) \
    X(eOWNERDELETED, -106) \
    X(eSINGLETONDELETED, -114) \
    X(eNOTOWNER, -18) \
    X(eNOTMEMBER, -19) \
    X(eNOTRELATED, -104) \
    X(eNOCURRENTROW, -7) \
    X(eNOCURRENTOWNER, -8) \
    X(eNOCURRENTMEMBER, -9) \
    X(eNOTLINKED, -16) \
    X(eINVITERATION, -111) \
    X(eINVCURSORCOL, -109) \
    X(eNOTINCURSOR, 22) \
    X(eBLOBBADSIZE, -113) \
    X(eBLOBBADPOSITION, -928) \
    X(eHASOWNER, -13) \
    X(eISOWNED, -14) \
    X(eISCOMPOUNDKEY, -15) \
    X(eCOMPOUNDKEY, -39) \
    X(eKEYERR, -910) \
    X(eKEYSEQ, 4) \
    X(eVARDATALEN, -911) \
    X(eVARDATAPTR, -918) \
    X(eTRFREE, -29) \
    X(eBADLOCKS, -908) \
    X(eINUPDATE, -90) \
    X(eININIT, -91) \
    X(eINVKEYSPEC, -44) \
    X(eSLAVEREADONLY, -87) \
    X(eDEBUG, -916) \
    X(eINVENCRYPT, -107) \
    X(eENCRYPTMISMATCH, -130) \
    X(eSETPAGES, -20) \
    X(eINVFILE, -62) \
    X(eREP_INVOP, -126) \
    X(eDBDREAD, -966) \
    X(eINVENDIAN, -64) \
    X(eINVSTRING, -65) \
    X(eINVDBA, -63) \
    X(eCATMISMATCH, -93) \
    X(eDBD_NONAMES, -28) \
    X(eNOT_ENCRYPTED, -108) \
    X(eREPLOG_ERROR, -965) \
    X(eREPLOG_EOF, 23) \
    X(eIMPBADXML, -56) \
    X(eIMPBADDATA, -57) \
    X(eMULTIPLE_DBS, -116) \
    X(eUNIONCATMISMATCH, -112) \
    X(eINCOMPAT, -21) \
    X(eINVOPFORBLOB, -927) \
    X(eDBOPENED, -30) \
    X(eNOCURRTYPE, -46) \
    X(eTABLEISINREF, -97) \
    X(eTFS_INVHANDLE, -220) \
    X(eTFS_NOTINITIALIZED, -224) \
    X(eTFS_DUPUSER, -205) \
    X(eTFS_FCNSEQ, -933) \
    X(eTFS_ILLEGALMOD, -222) \
    X(eTFS_ILLEGALACCESS, -223) \
    X(eTFS_INVUSERID, -207) \
    X(eTFS_DOCROOTUSED, -225) \
    X(eTFS_WRITEFAIL, -204) \
    X(eTFS_INVFILE, -210) \
    X(eTFS_IASYNC_ON, -228) \
    X(eTFS_BLOCKED, -229) \
    X(eTFS_NOTRANS, -209) \
    X(eTFS_NOPAGE, -201) \
    X(eTFS_COMMITFAILED, -906) \
    X(eTFS_DBINUSE, -69) \
    X(eTFS_INIEDITED, -230) \
    X(eTFS_ININOTEDITED, -231) \
    X(eTFS_NOMIR, -232) \
    X(eTFS_NOSQL, -233) \
    X(eTFS_NOTFS, -234) \
    X(eOSL_FAILURE, 1002) \
    X(eOSL_PRIV, 1009) \
    X(eOSL_INVUSER, 1016) \
    X(eOSL_INVPASS, 1017) \
    X(eOSL_NOSOURCE, 1007) \
    X(eOSL_NODEST, 1008) \
    X(eOSL_INVUUID, 1012) \
    X(eDDL_ERRORS, -68) \
    X(eMIR_SYNC_GENERROR, -89) \
    X(eMIR_SYNC_TIMEOUT, -94) \
    X(eMIR_INVLOGFILE, -931) \
    X(eTX_DISABLED, -235) \
    X(eTX_TRUNCATED, -211) \
    X(eTX_NETREAD, -202) \
    X(eTX_NETWRITE, -203) \
    X(eTX_CONNECT, -214) \
    X(eTX_HOSTNAME, -215) \
    X(eTX_ACCEPT, -217) \
    X(eTX_LISTEN, -216) \
    X(eTX_NO_REMOTE, -226) \
    X(eTX_GENERROR, -200) \
    X(eSYS_DCHAIN, -9017) \
    X(eSYS_BADTREE, -9002) \
    X(eSYS_BADHASH, -9021) \
    X(eSYS_KEYEXIST, -9003) \
    X(eSYS_BADOPTKEY, -9005) \
    X(eSYS_BADFREE, -9004) \
    X(eHTTP_BADUSERID, -42)

// Codes whose legacy number stands for another code, or for none.
#define OAK_LEGACY_ONE_WAY(X) \
    X(eDBNOTOPEN, -1) \
    X(eNOSTARTREAD, -24) \
    X(eDUPLICATE, 3) \
    X(eNODB, -4) \
    X(eINVFCNSEQ, -933) \
    X(eDEPRECATED, -55) \
    X(eLEGACYAPI, -131) \
    X(eINVDBID, -4) \
    X(eINVKEYID, -17) \
    X(eINVDB, -4) \
    X(eINVOPENMODE, -53) \
    X(eTFS_INVDBID, -4) \
    X(eTFS_DBOPEN, -30)

// Legacy numbers that stand for a code whose own number is another.
#define OAK_LEGACY_BACK_ONLY(X) \
    X(eDBOPEN, -1) \
    X(eTFS_DBOPEN, -219) \
    X(eTFS_INVDBID, -212) \
    X(eLOSTPOSITION, -105) \
    X(eINVKEYID, -47) \
    X(eSYS_ERROR, -901)

// clang-format on

namespace {

constexpr int32_t kSystemError = -901; // the number of every code without one of its own

#define OAK_LEGACY_COUNT(code, number) +1
static_assert(0 OAK_LEGACY_PAIRS(OAK_LEGACY_COUNT) OAK_LEGACY_ONE_WAY(OAK_LEGACY_COUNT) == 188);
#undef OAK_LEGACY_COUNT

constexpr bool rows_ascend() {
    for (size_t i = 1; i < OAK_ERRORS_OLD_ROWS; ++i) {
        if (oak_errors_old[i].sStatus <= oak_errors_old[i - 1].sStatus) {
            return false;
        }
    }
    return true;
}
static_assert(rows_ascend());
static_assert(oak_errors_old[0].sStatus == -9021);
static_assert(oak_errors_old[OAK_ERRORS_OLD_ROWS - 1].sStatus == 27);

const OAK_ERROR *b_findError(int32_t errnum) {
    int32_t low = 0;
    int32_t high = OAK_ERRORS_OLD_ROWS - 1;
    if (errnum < oak_errors_old[low].sStatus || errnum > oak_errors_old[high].sStatus) {
        return nullptr;
    }
    while (low <= high) {
        const int32_t middle = (low + high) >> 1;
        if (oak_errors_old[middle].sStatus == errnum) {
            return &oak_errors_old[middle];
        }
        if (oak_errors_old[middle].sStatus < errnum) {
            low = middle + 1;
        } else {
            high = middle - 1;
        }
    }
    return nullptr;
}

} // namespace

#define OAK_LEGACY_NUMBER_OF(code, number)                                                         \
    case code:                                                                                     \
        return number;
int32_t b_errorToLegacy(OAK_RETCODE rc) {
    switch (rc) {
        OAK_LEGACY_PAIRS(OAK_LEGACY_NUMBER_OF)
        OAK_LEGACY_ONE_WAY(OAK_LEGACY_NUMBER_OF)
        default:
            return kSystemError;
    }
}
#undef OAK_LEGACY_NUMBER_OF

#define OAK_LEGACY_CODE_OF(code, number)                                                           \
    case number:                                                                                   \
        return code;
OAK_RETCODE b_errorFromLegacy(int32_t legacy_rc) {
    switch (legacy_rc) {
        OAK_LEGACY_PAIRS(OAK_LEGACY_CODE_OF)
        OAK_LEGACY_BACK_ONLY(OAK_LEGACY_CODE_OF)
        default:
            return eSYS_BADERRCODE;
    }
}
#undef OAK_LEGACY_CODE_OF

const char *b_errorname(int32_t errnum) {
    const OAK_ERROR *row = b_findError(errnum);
    return row != nullptr ? row->name : nullptr;
}

const char *b_errorstr(int32_t errnum) {
    const OAK_ERROR *row = b_findError(errnum);
    return row != nullptr ? row->errorstring : nullptr;
}

/* The one list of status codes: name, number, SQLSTATE (or null), description.
 *
 * The enumeration OAK_RETCODE and the table of names and texts are both made
 * from this list; nothing else states a code's number. Within a group the
 * numbers are dense, and the groups stand in the order of oak_errgroups.
 * A description is one line of English. Some do not fit their names
 * (eTRUNCATED), have a slip in them (eHTTP_BADREQUEST), end in a blank
 * (eUNOMISMATCH) or stand crossed (eQA_TFS_PROPERTY_CONFLICT and
 * eQA_TFS_PROPERTY_UNSET): programs know these texts as they are, so they stay.
 * Include oakretcodetypes.h to use the codes. */
#ifndef OAKRETCODELIST_H
#define OAKRETCODELIST_H

/* A row is a line, however long. */
/* clang-format off */

/* Group "status oakc". */
#define OAK_RETCODES_STATUS_OAKC(X) \
    X(sQA_OAKC_SUCCESS_WITH_INFO, 29000, NULL, "A call-level call of a test succeeded and left diagnostic records")

/* Group "status". */
#define OAK_RETCODES_STATUS(X) \
    X(sNOTFOUND, 10000, "02000", "Requested item not found") \
    X(sDUPLICATE, 10001, "23000", "An item with the same key exists already") \
    X(sTIMEOUT, 10002, "HYT00", "The time limit was reached before the operation could complete") \
    X(sUPDATEDPOSITION, 10003, NULL, "The row at the cursor position was changed by an update") \
    X(sNOTINCURSOR, 10004, NULL, "The row is not among the rows of the cursor") \
    X(sTRABORTED, 10005, NULL, "The transaction was aborted") \
    X(sIGNORE, 10006, "RX001", "Error can be ignored") \
    X(sOKAYWITHINFO, 10007, "00001", "Successful return with info") \
    X(sNEEDDATA, 10008, "01000", "A parameter value must be supplied before execution can continue") \
    X(sNODATA, 10009, "02000", "No data is left to deliver") \
    X(sENDOFCURSOR, 10010, "02000", "The cursor has moved past its last row") \
    X(sEOF, 10011, NULL, "End of file") \
    X(sTRUNCATE, 10012, "01004", "Result is truncated") \
    X(sREFERENCING, 10013, NULL, "The row refers to another row") \
    X(sFILECHANGED, 10014, NULL, "The file was changed since it was last read") \
    X(sSKIPTRANS, 10015, NULL, "The transaction in the log is to be skipped") \
    X(sNOMOREPAGE, 10016, NULL, "There are no further pages to deliver") \
    X(sSETCLASH, 10017, NULL, "The set was changed by another user") \
    X(sUPDATEABORTED, 10018, NULL, "The update was aborted and its changes were discarded") \
    X(sSNAPSHOTENDED, 10019, NULL, "The snapshot has ended") \
    X(sREADENDED, 10020, NULL, "The read transaction has ended") \
    X(sTFS_SHUTDOWN, 10021, NULL, "The transaction file server is shutting down") \
    X(sOPTCHANGED, 10022, NULL, "The value of an option was changed") \
    X(sCMD_USAGE, 10023, NULL, "The usage information was displayed on request") \
    X(sCMD_VERSION, 10024, NULL, "The version information was displayed on request") \
    X(sNULLVAL, 10025, NULL, "The specified column is NULL") \
    X(sEOS, 10026, NULL, "End of set") \
    X(sDBNEEDSINIT, 10027, NULL, "The database must be initialized before it is used") \
    X(sIMPROWERROR, 10028, "RX002", "A row could not be imported and was passed over") \
    X(sSCHEMACHANGE, 10029, NULL, "The schema of the database has changed") \
    X(sUNDERFLOW, 10030, NULL, "Value underflow") \
    X(sPRECISIONLOSS, 10031, "22000", "Lost precision for BCD calculation") \
    X(sNOMORERESULTS, 10032, "02001", "The statement has no further result sets") \
    X(sFETCHBEYOND, 10033, "01S06", "The fetch went beyond the rows of the result set") \
    X(sTRIGGERSREADONLY, 10034, NULL, "The database contains triggers and oak_dbTriggersOn() or oak_dbTriggersOff() has not been called so the database is in read-only mode") \
    X(sDBNOTFOUND, 10035, "42000", "The database does not exist") \
    X(sKVNOVALUE, 10036, NULL, "The key/value pair does not have a value") \
    X(sOPTIONIGNORED, 10037, NULL, "The option does not apply here and was ignored") \
    X(sCHILD, 10038, NULL, "The child process is returned from osl_daemonStart") \
    X(sBASE_QUEUE_CLOSED, 10039, NULL, "The queue is closed and holds no further messages") \
    X(sBASE_QUEUE_EMPTY, 10040, NULL, "The queue holds no message at present")

/* Group "ok". */
#define OAK_RETCODES_OK(X) \
    X(sOKAY, 0, NULL, "Normal, successful return")

/* Group "fail". */
#define OAK_RETCODES_FAIL(X) \
    X(eFAIL, -1, NULL, "General failure")

/* Group "general". */
#define OAK_RETCODES_GENERAL(X) \
    X(eNOMEMORY, -10000, "HY001", "Out of memory") \
    X(eDBNOTOPEN, -10001, "3D000", "The database is not open") \
    X(eDBOPEN, -10002, "82117", "The database is open already") \
    X(eEXCLUSIVE, -10003, NULL, "The database is open for the exclusive use of another user") \
    X(eBADCAT, -10004, "42000", "The database catalog is invalid or contradicts itself") \
    X(eSQLRESERVED, -10005, NULL, "The name is a reserved word of SQL") \
    X(eTRACTIVE, -10006, "25001", "A transaction is active already") \
    X(eTRNOTACT, -10007, "25000", "No transaction is active") \
    X(eNOSTART, -10008, "25005", "Neither a read nor an update transaction has been started") \
    X(eNOSTARTUPDATE, -10009, "25005", "No update transaction has been started") \
    X(eNOSTARTREAD, -10010, "25005", "No read transaction has been started") \
    X(eNOTLOCKED, -10011, "25000", "The table is not locked") \
    X(eNOTFREE, -10012, "25000", "A lock on the table is held already") \
    X(eDUPLICATE, -10013, "40002", "The value duplicates that of a unique key") \
    X(eREFINTEGRITY, -10014, "40002", "The change would violate referential integrity") \
    X(eCHECK, -10015, "40002", "The value violates a check constraint") \
    X(eNODB, -10016, "42000", "No database of this name or handle is known") \
    X(eSNAPSHOTACTIVE, -10017, "25006", "Not allowed while a snapshot is active") \
    X(eSNAPSHOTNOTACTIVE, -10018, "25005", "No snapshot is active") \
    X(eOPENMODE, -10019, "42000", "The database is open in a mode that does not allow this") \
    X(eNOTIMPLEMENTED, -10020, "HYC00", "The feature is not implemented") \
    X(eINVFCNARG, -10021, NULL, "The function was called with an argument that it does not accept") \
    X(eINVNULLARG, -10022, "HY009", "Function argument cannot be NULL") \
    X(eINVFCNSEQ, -10023, "HY010", "The function was called out of sequence") \
    X(eINVLITERAL, -10024, "22005", "Invalid literal constant specification") \
    X(eMISSINGLITERAL, -10025, NULL, "A literal constant is expected here") \
    X(eCIRTABDELETE, -10026, NULL, "The tables to delete from refer to each other in a circle") \
    X(eNOTNULL, -10027, "42000", "The column does not accept NULL") \
    X(eFILEIO, -10028, NULL, "Reading from or writing to a file failed") \
    X(eFILEOPEN, -10029, NULL, "The file could not be opened") \
    X(eUNOMISMATCH, -10030, NULL, "Unions mismatch ") \
    X(eNOSPACE, -10031, NULL, "No space is left on the storage device") \
    X(ePRECOMMITTED, -10032, NULL, "The transaction is precommitted and can only be committed or rolled back") \
    X(eINVDBNAMESPEC, -10033, NULL, "Invalid form of a database name") \
    X(eINVTFSSPEC, -10034, NULL, "Invalid form of a transaction file server address") \
    X(eFILEINUSE, -10035, NULL, "The file is in use by another process") \
    X(eTRUNCATED, -10036, NULL, "Date truncated") \
    X(eBADREAD, -10037, NULL, "Fewer bytes could be read from the file than were expected") \
    X(eBADWRITE, -10038, NULL, "Fewer bytes could be written to the file than were given") \
    X(eRANGE, -10039, "22003", "Numeric value out of range") \
    X(eINVKEYVALUE, -10040, NULL, "Invalid key/value pair") \
    X(eINVBCD, -10041, NULL, "Invalid BCD value") \
    X(eINVBOUNDARYVAL, -10042, NULL, "Invalid value for a boundary of a range") \
    X(eDUPUSERID, -10043, NULL, "The user identifier is in use already") \
    X(eREADONLY, -10044, "42000", "The database or the object is read-only") \
    X(eMKDIR, -10045, NULL, "The directory could not be created") \
    X(eRECOVERYFAILED, -10046, NULL, "The database could not be recovered after a failure") \
    X(eNOTFOUND, -10047, NULL, "Not found") \
    X(eSYNTAX, -10048, "42000", "Syntax error") \
    X(eBADDATALEN, -10049, "HY090", "Invalid data length for the column") \
    X(eINVROWIDVAL, -10050, NULL, "Invalid row id value") \
    X(eVALUEISLIST, -10051, NULL, "The key has a list of values where one value is expected") \
    X(eINVVARINT, -10052, NULL, "Invalid variable integer value") \
    X(eDATALOST, -10053, NULL, "Significant data lost due to truncation") \
    X(eINVBINLITERAL, -10054, NULL, "Invalid binary literal specification") \
    X(eTYPEMISMATCH, -10055, "42000", "Data type mismatch") \
    X(eROWIDRANGE, -10056, NULL, "The row id is outside the range of the table") \
    X(eROWIDMISMATCH, -10057, NULL, "The row id belongs to a row of another table") \
    X(eROWLIMIT, -10058, NULL, "The table has reached its limit of rows") \
    X(eINVCONVERT, -10059, "HYC00", "Invalid data type conversion") \
    X(eINVUTF, -10060, NULL, "Invalid UTF string") \
    X(eINVOPTION, -10061, NULL, "The option is unknown or does not apply here") \
    X(eINVOPTIONVALUE, -10062, NULL, "The value is not accepted by the option") \
    X(eDBNOTCLOSED, -10063, NULL, "The database must be closed first") \
    X(eINVARG, -10064, "22000", "Invalid argument") \
    X(eINVARGTYPE, -10065, "22000", "The argument is of a type that the operation does not accept") \
    X(eINVTRID, -10066, "25000", "Invalid transaction identifier") \
    X(eNOTSUPPORTED, -10067, "IM001", "The operation is not supported") \
    X(eNOTROOTUPDATETRANS, -10068, NULL, "The active transaction is not the outermost update transaction") \
    X(eESCAPE, -10069, "42000", "Invalid escape clause") \
    X(eSTRTOOLONG, -10070, "22001", "The string is too long") \
    X(eDBEXISTS, -10071, "42000", "A database of this name exists already") \
    X(eEOD, -10072, NULL, "Insufficient data") \
    X(eINVID, -10073, NULL, "Invalid identifier number") \
    X(eINVUNICODE, -10074, NULL, "Invalid Unicode string") \
    X(eCOLCOUNTMISMATCH, -10075, NULL, "The number of values differs from the number of columns") \
    X(eKEYCOLCOUNTMISMATCH, -10076, NULL, "The number of values differs from the number of key columns") \
    X(eHASMEMBERS, -10077, "23000", "Other rows still refer to the row") \
    X(eDEPRECATED, -10078, NULL, "The function is deprecated and no longer does anything") \
    X(eINVTIMEOUT, -10079, NULL, "Invalid time-out value") \
    X(eLEGACYAPI, -10080, NULL, "Not allowed through the interface of the previous generation") \
    X(eLEGACYDB, -10081, NULL, "The database was made by the previous generation and must be converted") \
    X(eINMEMMISMATCH, -10082, NULL, "The in-memory and on-disk settings of the database do not agree") \
    X(eBADWILDALL, -10083, "42000", "Invalid wildcard character for any number of characters") \
    X(eBADWILDONE, -10084, "42000", "Invalid wildcard character for a single character") \
    X(eBADSNAPSHOTMODE, -10085, "25S01", "Invalid snapshot mode") \
    X(eINVHANDLE, -10086, "02002", "Invalid handle") \
    X(eINVSQLTYPE, -10087, "HY004", "Invalid SQL data type") \
    X(eCONNNOTOPEN, -10088, "08003", "The connection is not open") \
    X(eDIVBY0, -10089, "22012", "Division by zero") \
    X(eNOTANUMBER, -10090, NULL, "The result of the computation is not a number") \
    X(eINVALID, -10091, NULL, "The value is not valid") \
    X(eUNAVAIL, -10092, "HYT00", "The lock is held by another user and is not available") \
    X(eTABNOTFOUND, -10093, "42S02", "Table not found") \
    X(eCOLNOTFOUND, -10094, "42S22", "Column not found") \
    X(eNOFILE, -10095, NULL, "The file does not exist") \
    X(eINSERTVALS, -10096, "21S01", "The number of values to insert differs from the number of columns") \
    X(eINVTRIGSTMT, -10097, "0W000", "The statement is not allowed in this kind of trigger") \
    X(eNOSTATS, -10098, NULL, "No statistics have been collected for the database") \
    X(eDROPONLYCOL, -10099, "42000", "The only column of a table cannot be dropped") \
    X(eTFSOPTIONALLOC, -10100, NULL, "The option must be set before the transaction file server is allocated") \
    X(eOPTIONINCOMPAT, -10101, NULL, "Invcompatible option values") \
    X(eINVINFOKEY, -10102, NULL, "Invalid key for requested information") \
    X(eDBCORRUPTED, -10103, "42000", "The stored data is damaged") \
    X(eDROPTRIGCOL, -10104, "42000", "The column is used by a trigger and cannot be dropped")

/* Group "base". */
#define OAK_RETCODES_BASE(X) \
    X(eBASE_INVDATE, -11000, NULL, "Invalid date value") \
    X(eBASE_INVTIMEZONE, -11001, NULL, "Invalid time zone value") \
    X(eBASE_COMMAND, -11002, NULL, "Command line argument processor error") \
    X(eBASE_QUEUE_CLOSED, -11003, NULL, "The queue is closed and accepts no messages")

/* Group "core". */
#define OAK_RETCODES_CORE(X) \
    X(eDEFUNCT, -12000, NULL, "The function no longer exists in this generation of the engine") \
    X(eINVTASKID, -12001, NULL, "Invalid task identifier") \
    X(eINVDBID, -12002, NULL, "Invalid database identifier") \
    X(eINVCURSORID, -12003, NULL, "Invalid cursor identifier") \
    X(eINVTRANSID, -12004, NULL, "Invalid transaction handle") \
    X(eNOTRANSID, -12005, NULL, "A transaction identifier is required to begin a transaction") \
    X(eCURSORDB, -12006, NULL, "The cursor belongs to another database") \
    X(eINVTFSID, -12007, NULL, "Invalid transaction file server identifier") \
    X(eINVFORUNION, -12008, NULL, "The operation is not allowed on a union of databases") \
    X(eNOTKEY, -12009, NULL, "The column is not a key") \
    X(eNOTBLOB, -12010, NULL, "The column is not a large object") \
    X(eINVLOCKTYPE, -12011, NULL, "Invalid lock type") \
    X(eINVKEYID, -12012, NULL, "Invalid key identifier") \
    X(eKEYREQD, -12013, NULL, "A key is required for this operation") \
    X(eINVCOLID, -12014, NULL, "Invalid column identifier") \
    X(eINVTABID, -12015, NULL, "Invalid table identifier") \
    X(eINVREFID, -12016, NULL, "Invalid reference identifier") \
    X(eINVIDENTIFIER, -12017, NULL, "The identifier does not name an object of the schema") \
    X(eINVCURSOROP, -12018, NULL, "The operation is not allowed on this kind of cursor") \
    X(eDELETED, -12019, NULL, "The row has been deleted") \
    X(eOWNERDELETED, -12020, NULL, "The referenced row of the cursor has been deleted") \
    X(eSINGLETONDELETED, -12021, NULL, "The only row of the cursor has been deleted") \
    X(eNOTOWNER, -12022, NULL, "The table is not the referenced table of the reference") \
    X(eNOTMEMBER, -12023, NULL, "The table is not the referencing table of the reference") \
    X(eNOTRELATED, -12024, NULL, "The row is not related to the given row") \
    X(eNOCURRENTROW, -12025, NULL, "The cursor is not positioned on a row") \
    X(eNOCURRENTOWNER, -12026, NULL, "There is no current referenced row") \
    X(eNOCURRENTMEMBER, -12027, NULL, "There is no current referencing row") \
    X(eNOTLINKED, -12028, NULL, "The row is not linked through the reference") \
    X(eINVITERATION, -12029, NULL, "The cursor cannot be moved in this way") \
    X(eLOSTPOSITION, -12030, NULL, "The cursor has lost its position") \
    X(eINVCURSORCOL, -12031, NULL, "The column does not belong to the table of the cursor") \
    X(eINVCURSORKEY, -12032, NULL, "The key does not belong to the table of the cursor") \
    X(eNOTINCURSOR, -12033, NULL, "The row is not contained in the cursor") \
    X(eBLOBBADSIZE, -12034, NULL, "Invalid size for a large object") \
    X(eBLOBBADPOSITION, -12035, NULL, "Invalid position within a large object") \
    X(eHASOWNER, -12036, NULL, "The row is linked to a referenced row already") \
    X(eISOWNED, -12037, NULL, "The row is the referenced row of others and cannot be deleted") \
    X(eEOS, -12038, NULL, "The end of the set was reached where a row is required") \
    X(eISCOMPOUNDKEY, -12039, NULL, "The key is a compound key, where a single column is expected") \
    X(eCOMPOUNDKEY, -12040, NULL, "The values of a compound key are not valid") \
    X(eKEYERR, -12041, NULL, "The index of the key is inconsistent with the rows of its table") \
    X(eKEYSEQ, -12042, NULL, "Field type used out of sequence in d_keynext") \
    X(eVARDATALEN, -12043, NULL, "Invalid length of variable-length data") \
    X(eVARDATAPTR, -12044, NULL, "Invalid pointer to variable-length data") \
    X(eTRFREE, -12045, NULL, "A lock cannot be freed while a transaction is active") \
    X(eBADLOCKS, -12046, NULL, "The list of locks is inconsistent") \
    X(eINUPDATE, -12047, NULL, "Not allowed within an update transaction") \
    X(eININIT, -12048, NULL, "Not allowed while the database is being initialized") \
    X(eINVKEYSPEC, -12049, NULL, "The columns given do not form a valid key") \
    X(eREADONLYCURSOR, -12050, NULL, "The cursor is read-only") \
    X(eSLAVEREADONLY, -12051, NULL, "The database is a mirrored copy and can only be read") \
    X(eDEBUG, -12052, NULL, "A check of the debugging build failed") \
    X(eINVENCRYPT, -12053, "28000", "Invalid encryption key or algorithm") \
    X(eENCRYPTMISMATCH, -12054, NULL, "The encryption of the database differs from the one given") \
    X(eSETPAGES, -12055, NULL, "Error in d_setpages (database open or bad param)") \
    X(eINVFILE, -12056, NULL, "The file is not a valid database file") \
    X(eREP_INVOP, -12057, NULL, "The operation is not allowed on a replicated database") \
    X(eDBDREAD, -12058, NULL, "The dictionary of the database could not be read") \
    X(eINVENDIAN, -12059, NULL, "The byte order of the stored data is not that of this machine") \
    X(eINVSTRING, -12060, NULL, "Invalid string") \
    X(eINVDBA, -12061, NULL, "Invalid database address") \
    X(eCATMISMATCH, -12062, NULL, "The catalog differs from the one with which the database was made") \
    X(eSCHEMACHANGE, -12063, NULL, "The schema was changed while the operation was in progress") \
    X(eDBD_NONAMES, -12064, NULL, "The dictionary of the database holds no names") \
    X(eNOT_ENCRYPTED, -12065, NULL, "The database is not encrypted") \
    X(eREPLOG_ERROR, -12066, NULL, "The replication log could not be processed") \
    X(eREPLOG_EOF, -12067, NULL, "The replication log ends before it is complete") \
    X(eINVDB, -12068, NULL, "The database is not valid for this operation") \
    X(eIMPBADXML, -12069, NULL, "The XML text to import is not well formed") \
    X(eIMPBADDATA, -12070, NULL, "The data to import does not fit the schema") \
    X(eMULTIPLE_DBS, -12071, NULL, "The operation allows one database only") \
    X(eUNIONCATMISMATCH, -12072, NULL, "The catalogs of the databases do not fit into one union") \
    X(eINCOMPAT, -12073, NULL, "The file format is not compatible with this version") \
    X(eINVOPFORBLOB, -12074, NULL, "The operation is not allowed on a large object") \
    X(eINVOPENMODE, -12075, "42000", "Invalid mode for opening a database") \
    X(eDBOPENED, -12076, NULL, "Not allowed once a database has been opened") \
    X(eNOCURRTYPE, -12077, NULL, "There is no current table type") \
    X(eTABLEISINREF, -12078, NULL, "The table takes part in a reference") \
    X(eNOCOLUMNVALUE, -12079, NULL, "No value is given for a column that requires one") \
    X(eNULLCOLUMNVALUE, -12080, NULL, "The value of the column is NULL where one is required") \
    X(eINVDATEFMT, -12081, "22007", "Invalid date format") \
    X(eINVDATESEP, -12082, "22007", "Invalid date separator") \
    X(eINVTIMEFMT, -12083, NULL, "Invalid time format") \
    X(eVTNOTREGISTERED, -12084, "RX010", "The virtual table has not been registered") \
    X(eMIXEDTRANS, -12085, "42000", "The kinds of transaction cannot be mixed") \
    X(eINVLOCALE, -12086, NULL, "The locale is not known on this system") \
    X(eLOCALEMISMATCH, -12087, NULL, "The locale differs from the one of the database") \
    X(eNOTRTREE, -12088, NULL, "The key is not an R-tree") \
    X(eISRTREE, -12089, NULL, "The operation is not allowed on an R-tree key") \
    X(eDROPPED, -12090, NULL, "The object has been dropped")

/* Group "tfs". */
#define OAK_RETCODES_TFS(X) \
    X(eTFS_INVHANDLE, -13000, NULL, "Invalid handle of a transaction file server") \
    X(eTFS_INVTYPE, -13001, "42000", "Invalid type of transaction file server") \
    X(eTFS_NOTINITIALIZED, -13002, NULL, "The OAK Transaction File Server (TFS) is not initialized") \
    X(eTFS_DUPUSER, -13003, NULL, "The user is known to the transaction file server already") \
    X(eTFS_FCNSEQ, -13004, NULL, "The transaction file server was called out of sequence") \
    X(eTFS_ILLEGALMOD, -13005, NULL, "A page was modified outside a transaction") \
    X(eTFS_ILLEGALACCESS, -13006, NULL, "The file may not be accessed through the transaction file server") \
    X(eTFS_INVDBID, -13007, NULL, "The database identifier is unknown to the transaction file server") \
    X(eTFS_INVUSERID, -13008, NULL, "The user identifier is unknown to the transaction file server") \
    X(eTFS_INVIDINDEX, -13009, NULL, "The id index of the drawer is not valid") \
    X(eTFS_IDINDEXOFFSET, -13010, NULL, "The id index holds an invalid file offset") \
    X(eTFS_IDINDEXLENGTH, -13011, NULL, "The id index holds an invalid length") \
    X(eTFS_DOCROOTUSED, -13012, NULL, "The document root is in use by another transaction file server") \
    X(eTFS_DOCROOTNOTFOUND, -13013, NULL, "The document root does not exist or cannot be used") \
    X(eTFS_DOCROOTINVALID, -13014, NULL, "The document root is not a directory") \
    X(eTFS_GENERROR, -13015, NULL, "General failure in the transaction file server") \
    X(eTFS_WRITEFAIL, -13016, NULL, "The transaction file server failed to write to a file") \
    X(eTFS_INVFILE, -13017, NULL, "The file is not known to the transaction file server") \
    X(eTFS_IASYNC_ON, -13018, NULL, "Not allowed while internal asynchronous processing is on") \
    X(eTFS_BLOCKED, -13019, NULL, "The transaction file server is blocked by another operation") \
    X(eTFS_INVOPERATION, -13020, NULL, "The operation is not valid for this transaction file server") \
    X(eTFS_NOTRANS, -13021, NULL, "No such transaction is active in the transaction file server") \
    X(eTFS_DBOPEN, -13022, NULL, "The database is open in the transaction file server") \
    X(eTFS_NOPAGE, -13023, NULL, "The page does not exist in the file") \
    X(eTFS_COMMITFAILED, -13024, NULL, "Commit failed due to prelog file rename failure") \
    X(eTFS_DBINUSE, -13025, "3D000", "The database is in use by other users") \
    X(eTFS_INIEDITED, -13026, NULL, "The initialization file was edited by another program") \
    X(eTFS_ININOTEDITED, -13027, NULL, "The initialization file was not edited") \
    X(eTFS_NAMEINUSE, -13028, NULL, "The name is in use within the transaction file server") \
    X(eTFS_NOMIR, -13029, NULL, "Mirroring is not available in this transaction file server") \
    X(eTFS_NOSQL, -13030, NULL, "SQL is not available in this transaction file server") \
    X(eTFS_NOTFS, -13031, NULL, "No transaction file server of the requested type is available") \
    X(eTFS_CONNECT, -13032, NULL, "The connection to the transaction file server failed") \
    X(eTFS_ENCNOTINIT, -13033, NULL, "The encryption of the transaction file server is not initialized")

/* Group "osl". */
#define OAK_RETCODES_OSL(X) \
    X(eOSL_FAILURE, -14000, NULL, "General failure in the OSL library") \
    X(eOSL_MUTEX_FAILURE, -14001, NULL, "A mutex could not be created or used") \
    X(eOSL_NO_MATCH, -14002, NULL, "No file matches the pattern") \
    X(eOSL_PRIV, -14003, NULL, "Insufficient privileges for the operation") \
    X(eOSL_INVUSER, -14004, NULL, "The user is unknown to the operating system") \
    X(eOSL_INVPASS, -14005, NULL, "The password is not valid") \
    X(eOSL_NOSOURCE, -14006, NULL, "The source file does not exist") \
    X(eOSL_NODEST, -14007, NULL, "The destination does not exist or cannot be written") \
    X(eOSL_INVUUID, -14008, NULL, "Invalid UUID") \
    X(eOSL_DEADLOCK, -14009, NULL, "The wait would never end because of a deadlock")

/* Group "ddl". */
#define OAK_RETCODES_DDL(X) \
    X(eDDL_SYNTAX, -14500, "42000", "Syntax error in a DDL statement") \
    X(eDDL_CRDBACTIVE, -14501, "RD001", "A CREATE DATABASE is still in progress") \
    X(eDDL_WRONGDB, -14502, "RD002", "The statement names a database other than the one being defined") \
    X(eDDL_DUPCOLUMN, -14503, "42S21", "The column is listed more than once") \
    X(eDDL_NOTWITHDOMAIN, -14504, "42000", "The clause is not allowed on a column that is declared by a domain") \
    X(eDDL_DOMNOTFOUND, -14505, "42000", "Domain not found") \
    X(eDDL_BADDATATYPE, -14506, "42000", "Invalid data type in a declaration") \
    X(eDDL_DUPTABNAME, -14507, "42S01", "A table of this name exists already") \
    X(eDDL_DUPCOLNAME, -14508, "42S21", "A column of this name exists already in the table") \
    X(eDDL_FKMISMATCH, -14509, "42000", "The foreign key columns do not match those of the referenced key") \
    X(eDDL_REFNULL, -14510, "42000", "ON DELETE or ON UPDATE SET NULL requires columns that accept NULL") \
    X(eDDL_NOPRIKEY, -14511, "42S12", "The referenced table has no primary key") \
    X(eDDL_DEFAUTO, -14512, "42000", "DEFAULT AUTO is not allowed for a column of this type") \
    X(eDDL_DEFCURRENT, -14513, "42000", "DEFAULT CURRENT is allowed for date and time columns only") \
    X(eDDL_BADVARPREC, -14514, "22000", "Invalid precision or scale") \
    X(eDDL_VARCHARLEN, -14515, "22000", "Invalid length of a character column") \
    X(eDDL_BINLEN, -14516, "22000", "Invalid length of a binary column") \
    X(eDDL_NOMAXROWS, -14517, "42000", "The clause requires a MAXROWS for the table") \
    X(eDDL_MAXROWSVALUE, -14518, "22000", "Invalid MAXROWS value") \
    X(eDDL_CONSTRNAME, -14519, "42000", "Invalid or duplicate constraint name") \
    X(eDDL_NULLCONFLICT, -14520, "42000", "A NULL default conflicts with NOT NULL") \
    X(eDDL_DROPCOLUMN, -14521, "0A000", "The column is used by a key and cannot be dropped") \
    X(eDDL_DROPNOTNULL, -14522, "0A000", "NOT NULL cannot be dropped from this column") \
    X(eDDL_ALTERCHECK, -14523, "0A000", "The check constraint cannot be altered") \
    X(eDDL_CONSTRNOTFOUND, -14524, "42000", "Constraint not found") \
    X(eDDL_NOREFDTABLE, -14525, "42S02", "The referenced table does not exist") \
    X(eDDL_COLDOMCONSTR, -14526, "42000", "The constraint is declared by the column's domain") \
    X(eDDL_DROPREFDKEY, -14527, "0A000", "A key that is referenced by a foreign key cannot be dropped") \
    X(eDDL_FKCOLINFK, -14528, "0A000", "The column is part of another foreign key already") \
    X(eDDL_ALTERTYPE, -14529, "0A000", "The type of the column cannot be altered in this way") \
    X(eDDL_NEEDTABLE, -14530, "42000", "The database needs at least one table") \
    X(eDDL_DROPTABLE, -14531, "0A000", "A table that is referenced by others cannot be dropped") \
    X(eDDL_DROPFKCOL, -14532, "0A000", "A column of a foreign key cannot be dropped") \
    X(eDDL_DROPDOMAIN, -14533, "0A000", "A domain that is used by columns cannot be dropped") \
    X(eDDL_DOMAINCHECK, -14534, "0A000", "The check constraint of a domain cannot be changed") \
    X(eDDL_DBEXISTS, -14535, "3D000", "The database to be created exists already") \
    X(eDDL_CONDEXPR, -14536, "42000", "Invalid conditional expression in a check constraint") \
    X(eDDL_DISPLAY, -14537, "42000", "Invalid DISPLAY clause") \
    X(eDDL_COLTYPE, -14538, "42000", "Invalid column type") \
    X(eDDL_COLDECL, -14539, "42000", "Invalid column declaration") \
    X(eDDL_COLCONSTRAINT, -14540, "42000", "Invalid column constraint") \
    X(eDDL_TABCONSTRAINT, -14541, "42000", "Invalid table constraint") \
    X(eDDL_INDEXMETHOD, -14542, "42000", "Invalid index method") \
    X(eDDL_ORDERBY, -14543, "42000", "Invalid ORDER BY clause in a key") \
    X(eDDL_ONACTION, -14544, "42000", "Invalid ON DELETE or ON UPDATE action") \
    X(eDDL_KEYSPEC, -14545, "42000", "Invalid declaration of a key") \
    X(eDDL_FORKEYSPEC, -14546, "42000", "Invalid declaration of a foreign key") \
    X(eDDL_ERRORS, -14547, "42000", "Errors were found in the DDL statements") \
    X(eDDL_ALTERCOL, -14548, "42000", "Invalid ALTER COLUMN clause") \
    X(eDDL_NOARRAYS, -14549, "0A000", "Arrays are not allowed here") \
    X(eDDL_NOBLOBS, -14550, "0A000", "Large objects are not allowed here") \
    X(eDDL_ALTERACT, -14551, "42000", "Invalid ALTER TABLE action") \
    X(eDDL_HASPRIKEY, -14552, "42000", "The table has a primary key already") \
    X(eDDL_NOLOBKEYS, -14553, "0A000", "A large object column cannot be part of a key") \
    X(eDDL_NODBNAME, -14554, "42000", "The statement gives no database name") \
    X(eDDL_INVDEF, -14555, "42000", "Invalid default value") \
    X(eDDL_NOHASHORDER, -14556, "0A000", "A hash key has no ascending or descending order") \
    X(eDDL_BADRTREECOLS, -14557, "0A000", "The columns of an R-tree key must be arrays of one numeric type") \
    X(eDDL_BADRTREELEN, -14558, "0A000", "The number of elements does not make the bounds of an R-tree key") \
    X(eDDL_NONUNIQUEHASH, -14559, "42000", "A hash key must be unique") \
    X(eDDL_TABREFFEDINPL, -14560, "0A000", "The table is referenced in a stored procedure and cannot be changed") \
    X(eDDL_COLWITHDEFVAL, -14561, "42000", "The new column must accept NULL or have a default value") \
    X(eDDL_INVCHGFORKEY, -14562, "42000", "Cannot change a foreign key constaint when the key columns have non-null values") \
    X(eDDL_TBD, -14563, "0A000", "DDL TBD code (last DDL error code)")

/* Group "sql". */
#define OAK_RETCODES_SQL(X) \
    X(eSQL_SQLERROR, -15000, "RX999", "Internal SQL error") \
    X(eSQL_DUPCURSOR, -15001, "3C000", "A cursor of this name exists already") \
    X(eSQL_GENFILE, -15002, "RX005", "The file to be generated could not be written") \
    X(eSQL_BADFORMAT, -15003, "22000", "Invalid display format") \
    X(eSQL_COLNUMBER, -15004, "07009", "Invalid column number") \
    X(eSQL_PARNUMBER, -15005, "07009", "Invalid parameter number") \
    X(eSQL_OAKERROR, -15006, "RX999", "OAK runtime error") \
    X(eSQL_SELECTCOLS, -15007, "21S02", "The number of selected columns differs from the number of columns required") \
    X(eSQL_NOCOLUMN, -15008, "42S22", "The column is in none of the tables of the statement") \
    X(eSQL_NUMPAR, -15009, "21000", "The number of parameter values differs from the number of parameter markers") \
    X(eSQL_FETCHTYPE, -15010, "HY106", "Invalid fetch orientation") \
    X(eSQL_ROWVALUE, -15011, "HY107", "Row value out of range") \
    X(eSQL_CURPOS, -15012, "HY109", "Invalid cursor position") \
    X(eSQL_NOSETATTR, -15013, "HY110", "The attribute cannot be set in the present state of the statement") \
    X(eSQL_CURSTATE, -15014, "24000", "Invalid cursor state") \
    X(eSQL_NOTSELECT, -15015, "24000", "The statement is not a SELECT") \
    X(eSQL_ESCAPECHAR, -15016, "22019", "Invalid escape character") \
    X(eSQL_INVSTATE, -15017, "RX006", "The statement handle is in a state that does not allow this call") \
    X(eSQL_WHERECALCS, -15018, "42000", "An aggregate function is not allowed in a WHERE clause") \
    X(eSQL_INVPARAM, -15019, "42000", "A parameter marker is not allowed here") \
    X(eSQL_DUPPROC, -15020, "42000", "The stored procedure is declared more than once") \
    X(eSQL_NOPROC, -15021, "RX042", "Stored procedure not found") \
    X(eSQL_NUMARGS, -15022, "21000", "Wrong number of arguments for the stored procedure") \
    X(eSQL_BADOUTERJOIN, -15023, "RX007", "Invalid form of an outer join") \
    X(eSQL_HDBCINUSE, -15024, "08002", "The connection handle is in use") \
    X(eSQL_UDF, -15025, "38000", "A user-defined function reported an error") \
    X(eSQL_NORETURNVAL, -15026, "2F005", "The function ended without a RETURN statement") \
    X(eSQL_UDFDEFN, -15027, "RX011", "Invalid definition of a user-defined function") \
    X(eSQL_UDFARG, -15028, "22023", "Invalid argument for a user-defined function") \
    X(eSQL_UDFNOARGS, -15029, "21000", "The user-defined function takes no arguments") \
    X(eSQL_INSERTCOLREF, -15030, "42000", "A column reference is not allowed among the values of an INSERT") \
    X(eSQL_DUPJOINCOL, -15031, "42000", "The column is named more than once in a join") \
    X(eSQL_NOJOINCOLMATCH, -15032, "42000", "The tables of a natural join have no column in common") \
    X(eSQL_SORTCOLREF, -15033, "42000", "The sort column is not among the columns of the result") \
    X(eSQL_FCNARG, -15034, "21000", "Invalid argument for a built-in function") \
    X(eSQL_NUMFCNARGS, -15035, "21000", "Wrong number of arguments for a built-in function") \
    X(eSQL_INVSTMT, -15036, "HY010", "Invalid statement handle or statement not ready") \
    X(eSQL_CANCELLED, -15037, "HY008", "The operation was cancelled") \
    X(eSQL_GROUPBYAGGFN, -15038, "42000", "An aggregate function is not allowed in a GROUP BY clause") \
    X(eSQL_TXUNKNOWN, -15039, "25S01", "The state of the transaction is unknown") \
    X(eSQL_NOTPREPARED, -15040, "HY007", "The statement has not been prepared") \
    X(eSQL_INVTXTYPE, -15041, "HY012", "Invalid transaction operation") \
    X(eSQL_PARMTYPE, -15042, "HY105", "Invalid parameter type") \
    X(eSQL_TIMEOUT, -15043, "HYT00", "The statement exceeded its time limit") \
    X(eSQL_IEF, -15044, "RX012", "An import or export file could not be processed") \
    X(eSQL_REMOTEERROR, -15045, "08S01", "The remote server reported an error") \
    X(eSQL_COMERROR, -15046, "08S01", "The communication with the server failed") \
    X(eSQL_LOCKSACTIVE, -15047, "RX014", "Not allowed while locks are held") \
    X(eSQL_MULTIDBTRANS, -15048, "RX015", "The transaction spans more than one database") \
    X(eSQL_NOTUPDATEABLE, -15049, "0U000", "The result set cannot be updated") \
    X(eSQL_BLOBEXPR, -15050, "RX016", "A large object column is not allowed in an expression") \
    X(eSQL_DATAATEXEC, -15051, "RX017", "Data at execution is not allowed for this parameter") \
    X(eSQL_BLOBPARSONLY, -15052, "RX018", "The value of a large object must be given by a parameter") \
    X(eSQL_BADBLOBPAR, -15053, "RX019", "Invalid parameter for a large object") \
    X(eSQL_LOCKMODE, -15054, "RX023", "Invalid lock mode") \
    X(eSQL_NOUPDCOLS, -15055, "42000", "The UPDATE statement sets no columns") \
    X(eSQL_AUTOCOMMIT, -15056, "RX024", "Not allowed in the present auto-commit mode") \
    X(eSQL_CURSORTABLE, -15057, "0T000", "The table is not the one that the cursor selects from") \
    X(eSQL_RDONLYFLAG, -15058, "25000", "The read-only attribute cannot be changed within a transaction") \
    X(eSQL_TABLEREF, -15059, "42000", "The table is not referenced in the FROM clause") \
    X(eSQL_NESTEDAGGS, -15060, "42000", "An aggregate function cannot contain another") \
    X(eSQL_CHARREQD, -15061, "2200G", "A character value is required") \
    X(eSQL_CONNECT, -15062, "08001", "The connection to the server could not be made") \
    X(eSQL_UNIONOPEN, -15063, "RX026", "The database is open as part of a union") \
    X(eSQL_NOBLOBSORT, -15064, "42000", "A large object column is not allowed in an ORDER BY clause") \
    X(eSQL_NOBLOBGROUP, -15065, "42000", "A large object column is not allowed in a GROUP BY clause") \
    X(eSQL_DIFFCONNS, -15066, "RX027", "The statements belong to different connections") \
    X(eSQL_OUTERJOIN, -15067, "RX028", "The outer join has no access path that can execute it") \
    X(eSQL_NOWHEREBLOB, -15068, "42000", "A large object column is not allowed in a WHERE clause") \
    X(eSQL_NAMEDPARAM, -15069, "RX032", "Invalid use of a named parameter") \
    X(eSQL_NOTINUDF, -15070, "RX033", "The call is not allowed from a user-defined function") \
    X(eSQL_GROUPRESULT, -15071, "42000", "The column is neither grouped nor the argument of an aggregate function") \
    X(eSQL_INVCURSOR, -15072, "34000", "Invalid cursor name") \
    X(eSQL_CURSORTAB, -15073, "0T000", "The cursor does not select from this table") \
    X(eSQL_FORUPDCOL, -15074, "42000", "The column is not listed in the FOR UPDATE clause") \
    X(eSQL_INVPROC, -15075, "RX036", "The compiled stored procedure is not valid") \
    X(eSQL_NOTUDFAGG, -15076, "42000", "The user-defined function is not an aggregate") \
    X(eSQL_INVFILETYPE, -15077, "RX037", "Invalid file type") \
    X(eSQL_INVROWIDVAL, -15078, "22000", "Invalid value for a row id column") \
    X(eSQL_NOINSERTID, -15079, "RX038", "No row id is available of a last insert") \
    X(eSQL_INVSELECT, -15080, "42000", "Invalid SELECT statement") \
    X(eSQL_UPDROWIDPK, -15081, "42000", "A row id primary key cannot be updated") \
    X(eSQL_GROUPBYPARMS, -15082, "42000", "A parameter marker is not allowed in a GROUP BY clause") \
    X(eSQL_INVARMISMATCH, -15083, "42000", "The type of the variable does not match that of the value") \
    X(eSQL_SORTCOST, -15084, "22003", "The sort cost factor is outside its range") \
    X(eSQL_CACHESIZE, -15085, "22003", "The cache size is outside its range") \
    X(eSQL_DEBUGMODE, -15086, "22003", "The debug mode is outside its range") \
    X(eSQL_BADSCALE, -15087, "HY104", "Invalid precision or scale value") \
    X(eSQL_TOOMANYROWS, -15088, "21000", "The query returns more than one row") \
    X(eSQL_AMBIGUOUSCOLREF, -15089, "42000", "The column name is ambiguous") \
    X(eSQL_NOHIDDENCOLS, -15090, "42000", "A hidden column is not allowed here") \
    X(eSQL_ROWNUMBER, -15091, "42000", "The row number function is not allowed here") \
    X(eSQL_LABELMISMATCH, -15092, "42000", "The label at the end differs from the label at the beginning") \
    X(eSQL_UNDECLAREDVARREF, -15093, "42000", "The variable has not been declared") \
    X(eSQL_NOAGGINASGT, -15094, "42000", "An aggregate function is not allowed in an assignment") \
    X(eSQL_PROCGLOBALREF, -15095, "42000", "The global variable cannot be referenced in a stored procedure") \
    X(eSQL_NOVALGLOBAL, -15096, "42000", "The global variable has no value") \
    X(eSQL_INARGASGT, -15097, "42000", "An IN argument cannot be assigned to") \
    X(eSQL_OUTARGCALL, -15098, "42000", "An OUT argument of a call must be a variable") \
    X(eSQL_NOOERRCODE, -15099, "42000", "No error code of this name exists") \
    X(eSQL_CASENOTFOUND, -15100, "20000", "No case of the CASE statement matches and it has no ELSE") \
    X(eSQL_OUTARGS, -15101, "42000", "OUT arguments are not allowed here") \
    X(eSQL_INVRETURN, -15102, "42000", "Invalid RETURN statement") \
    X(eSQL_RESULTSET, -15103, "42000", "The result set cannot be returned") \
    X(eSQL_RETURNTYPE, -15104, "2200G", "The type of the value does not match the declared return type") \
    X(eSQL_ALIASEDCOLSREQD, -15105, "42000", "The computed columns need alias names") \
    X(eSQL_CURNOTDECLARED, -15106, "42000", "The cursor has not been declared") \
    X(eSQL_USEINPROCONLY, -15107, "42000", "The statement is allowed in a stored procedure only") \
    X(eSQL_FETCHVARS, -15108, "OT000", "FETCH INTO variable list cursor column count mismatch") \
    X(eSQL_FETCHVARDATATYPE, -15109, "2200G", "The type of a FETCH INTO variable does not match that of its column") \
    X(eSQL_NORESULTSETS, -15110, "42000", "The stored procedure returns no result sets") \
    X(eSQL_DUPVARREF, -15111, "42000", "The variable is listed more than once") \
    X(eSQL_NOTROWVAR, -15112, "42000", "The variable is not a row variable") \
    X(eSQL_ROWVARREF, -15113, "42000", "A row variable is not allowed here") \
    X(eSQL_GLOBALVARREF, -15114, "42000", "A global variable is not allowed here") \
    X(eSQL_NOTROWVARCOL, -15115, "42000", "The column does not belong to the row variable") \
    X(eSQL_NOTBLOCKVAR, -15116, "42000", "The variable is not declared in this block") \
    X(eSQL_TOOMANYROWVARS, -15117, "42000", "Only one row variable is allowed") \
    X(eSQL_WRONGROWVAR, -15118, "42000", "The row variable is of another table") \
    X(eSQL_LABELNOTFOUND, -15119, "42000", "Label not found") \
    X(eSQL_FORCURSOR, -15120, "42000", "The cursor of a FOR loop cannot be used in this way") \
    X(eSQL_ARGREF, -15121, "42000", "An argument cannot be referenced here") \
    X(eSQL_BADARGFORM, -15122, "42000", "Invalid form of an argument declaration") \
    X(eSQL_PREPVAROUT, -15123, "42000", "The variable of a prepared statement must be an output variable") \
    X(eSQL_PREPVARROW, -15124, "42000", "A row variable cannot hold the text of a prepared statement") \
    X(eSQL_PREPVARTYPE, -15125, "42000", "The text of a prepared statement must be a character variable") \
    X(eSQL_BADINTOVARTYPE, -15126, "42000", "Invalid type of an INTO variable") \
    X(eSQL_DUPPREPNAME, -15127, "42000", "A prepared statement of this name exists already") \
    X(eSQL_PREPNOTFOUND, -15128, "42000", "Prepared statement not found") \
    X(eSQL_PREPNOPARAMS, -15129, "42000", "The prepared statement takes no parameters") \
    X(eSQL_PREPNOTSELECT, -15130, "42000", "The prepared statement is not a SELECT") \
    X(eSQL_EXECNEEDSINTO, -15131, "42000", "The EXECUTE statement needs an INTO clause") \
    X(eSQL_PREPUNALLOWABLE, -15132, "42000", "The statement cannot be prepared") \
    X(eSQL_PREPNOCOLS, -15133, "0T000", "The prepared statement returns no columns") \
    X(eSQL_NOTCONDITION, -15134, "42000", "The name is not that of a condition") \
    X(eSQL_GENEXCEPTION, -15135, "42000", "A general exception handler cannot be combined with others") \
    X(eSQL_DUPCONDITION, -15136, "42000", "The condition is declared more than once") \
    X(eSQL_UNDONOTATOMIC, -15137, "42000", "An UNDO handler requires an atomic block") \
    X(eSQL_HANDLERNOTFOUND, -15138, "45000", "No handler was found for the user-defined exception") \
    X(eSQL_RESIGNAL, -15139, "0K000", "RESIGNAL is allowed only while a handler is active") \
    X(eSQL_INVDIAGITEM, -15140, "42000", "Invalid diagnostics item") \
    X(eSQL_MSGTEXT, -15141, "42000", "The message text of a condition must be a character value") \
    X(eSQL_NODIAGSINFO, -15142, "0Z000", "No diagnostics information is available") \
    X(eSQL_INVCONDNUM, -15143, "35000", "Invalid condition number") \
    X(eSQL_MAXDIAGSAREA, -15144, "0Z001", "The maximum number of stacked diagnostics areas is exceeded") \
    X(eSQL_DIAGNOTSTACKED, -15145, "0Z002", "There is no stacked diagnostics area outside a handler") \
    X(eSQL_PROCEXISTS, -15146, "RX042", "A stored procedure of this name exists already") \
    X(eSQL_TRMODE, -15147, "42000", "Invalid transaction mode") \
    X(eSQL_BEGINTRANS, -15148, "42000", "A transaction cannot be started here") \
    X(eSQL_ATOMIC, -15149, "42000", "The statement is not allowed in an atomic block") \
    X(eSQL_MODIFIES, -15150, "2F002", "The routine is not declared to modify SQL data") \
    X(eSQL_SYSCAT, -15151, "42000", "The system catalog cannot be changed") \
    X(eSQL_SQLSTATESIGNAL, -15152, "RX777", "Unhandled signaled SQLSTATE condition") \
    X(eSQL_NOTDETERMINISTIC, -15153, "42000", "The routine must be deterministic") \
    X(eSQL_LEAVEHANDLER, -15154, "42000", "A handler cannot be left in this way") \
    X(eSQL_ASGTEXPRCOUNT, -15155, "42000", "The number of expressions differs from the number of assigned variables") \
    X(eSQL_NOTINFORLOOP, -15156, "42000", "The statement is not allowed in a FOR loop") \
    X(eSQL_DUPLICATELABEL, -15157, "42000", "The label is used more than once") \
    X(eSQL_CALLFUNCTION, -15158, "42000", "A function cannot be invoked by CALL") \
    X(eSQL_TRIGDBMISMATCH, -15159, "42000", "The trigger and its table are in different databases") \
    X(eSQL_TRIGCOLLIST, -15160, "42000", "A column list is allowed for UPDATE triggers only") \
    X(eSQL_BEGINATOMIC, -15161, "42000", "The body of a trigger must be BEGIN ATOMIC") \
    X(eSQL_TRIGEXISTS, -15162, "RX042", "A trigger of this name exists already") \
    X(eSQL_WHENFCN, -15163, "42000", "The function is not allowed in the WHEN clause of a trigger") \
    X(eSQL_NOTINTRIGGER, -15164, "42000", "The statement is not allowed in a trigger") \
    X(eSQL_NOTRIG, -15165, "42000", "Trigger not found") \
    X(eSQL_NODIRECTORY, -15166, "RX044", "The directory does not exist") \
    X(eSQL_NOINSERTVALS, -15167, "42000", "The INSERT statement gives no values") \
    X(eSQL_DEFINSERTVALS, -15168, "42000", "DEFAULT is not allowed among these values of an INSERT") \
    X(eSQL_INVARRAYTYPE, -15169, "22000", "Invalid data type for an array") \
    X(eSQL_NOTARRAY, -15170, "42000", "The column or variable is not an array") \
    X(eSQL_BADSUBSCRIPT, -15171, "42000", "Invalid array subscript") \
    X(eSQL_INVARRAYOP, -15172, "42000", "The operation is not allowed on an array") \
    X(eSQL_RECURSIVEPROC, -15173, "HY000", "A stored procedure cannot call itself") \
    X(eSQL_TBD, -15174, "0A000", "Yet to be implemented feature") \
    X(eSQL_SYSTEM, -15175, "RX999", "System error")

/* Group "mirroring". */
#define OAK_RETCODES_MIRRORING(X) \
    X(eMIR_SYNC_GENERROR, -16000, NULL, "The synchronization of a mirrored database failed") \
    X(eMIR_SYNC_TIMEOUT, -16001, NULL, "The synchronization of a mirrored database timed out") \
    X(eMIR_INVLOGFILE, -16002, NULL, "Invalid log file for mirroring")

/* Group "oakc". */
#define OAK_RETCODES_OAKC(X) \
    X(eOAKC_BADCTYPE, -17000, "HY004", "Invalid application buffer type") \
    X(eOAKC_BADSTYPE, -17001, "HY004", "Invalid SQL type for the column or parameter") \
    X(eOAKC_NOMEMORY, -17002, "HY013", "The memory of the call-level interface could not be managed") \
    X(eOAKC_TYPEATTR, -17003, "HY024", "The attribute does not accept a value of this type") \
    X(eOAKC_NOTCAPABLE, -17004, "IM001", "The driver does not support this function") \
    X(eOAKC_DESCRANGE, -17005, "HY091", "The descriptor field identifier is outside its range") \
    X(eOAKC_INVDESCIDX, -17006, "07009", "Invalid descriptor index") \
    X(eOAKC_NOTCURSOR, -17007, "07005", "The prepared statement does not produce a cursor") \
    X(eOAKC_INVIOAKOD, -17008, "HY016", "An implementation row descriptor cannot be modified") \
    X(eOAKC_INVOPENMODE, -17009, "01S00", "Invalid open mode in the connection attributes") \
    X(eOAKC_OPTIONRANGE, -17010, "HY092", "The attribute or option identifier is outside its range") \
    X(eOAKC_NOINDVAR, -17011, "22002", "An indicator variable is required for a NULL value") \
    X(eOAKC_CLOSEHDBC, -17012, "01002", "An error occurred while the connection was being closed") \
    X(eOAKC_OPENHDBCS, -17013, "01002", "The environment still has open connections") \
    X(eOAKC_AUTODESCR, -17014, "HY017", "Invalid use of an automatically allocated descriptor") \
    X(eOAKC_ATTRVALUE, -17015, "HY024", "Invalid attribute value") \
    X(eOAKC_FCNRANGE, -17016, "HY095", "The function identifier is outside its range") \
    X(eOAKC_INVOPNOW, -17017, "HY010", "The operation is not valid at this time") \
    X(eOAKC_BADDESCINFO, -17018, "HY021", "The fields of the descriptor are inconsistent") \
    X(eOAKC_CONCATNULL, -17019, "HY020", "Data in pieces cannot be concatenated to a NULL value") \
    X(eOAKC_COLRANGE, -17020, "HY097", "The column type is outside its range") \
    X(eOAKC_SCOPERANGE, -17021, "HY098", "The scope is outside its range") \
    X(eOAKC_NULLRANGE, -17022, "HY099", "The nullable type is outside its range") \
    X(eOAKC_UNIQUERANGE, -17023, "HY100", "The uniqueness option is outside its range") \
    X(eOAKC_ACCURANGE, -17024, "HY101", "The accuracy option is outside its range") \
    X(eOAKC_OPTDEPRECATED, -17025, "HY092", "The option is deprecated")

/* Group "tx". */
#define OAK_RETCODES_TX(X) \
    X(eTX_DISABLED, -18000, NULL, "The HTTP listener is disabled") \
    X(eTX_TRUNCATED, -18001, NULL, "A network message was truncated") \
    X(eTX_NETREAD, -18002, NULL, "Reading from the network failed") \
    X(eTX_NETWRITE, -18003, NULL, "Writing to the network failed") \
    X(eTX_CONNECT, -18004, "08S01", "The connection to the server could not be established") \
    X(eTX_HOSTNAME, -18005, "08S01", "The host name could not be resolved") \
    X(eTX_ACCEPT, -18006, NULL, "An incoming connection could not be accepted") \
    X(eTX_LISTEN, -18007, NULL, "The network port could not be listened on") \
    X(eTX_NO_REMOTE, -18008, NULL, "Remote connections are not available in this library") \
    X(eTX_GENERROR, -18009, NULL, "General failure in the network transport")

/* Group "system". */
#define OAK_RETCODES_SYSTEM(X) \
    X(eSYS_BADERRCODE, -20000, "RX000", "Invalid oak RETCODE value") \
    X(eSYS_ERRACTIVE, -20001, NULL, "Error function call not allowed when another error is active") \
    X(eSYS_ERRCATCH, -20002, NULL, "Attempt to pop a catch off an empty catch stack") \
    X(eSYS_DCHAIN, -20003, NULL, "The chain of deleted items is broken") \
    X(eSYS_BADTREE, -20004, NULL, "A B-tree is damaged") \
    X(eSYS_BADHASH, -20005, NULL, "A hash index is damaged") \
    X(eSYS_KEYEXIST, -20006, NULL, "The key to be inserted exists in the index already") \
    X(eSYS_BADOPTKEY, -20007, NULL, "An optional key is in an inconsistent state") \
    X(eSYS_BADFREE, -20008, NULL, "Memory was freed that had not been allocated") \
    X(eSYS_ERROR, -20009, NULL, "Internal system error") \
    X(eSYS_NOSQLSTATE, -20010, "RX998", "Unexpected empty SQL state")

/* Group "http". */
#define OAK_RETCODES_HTTP(X) \
    X(eHTTP_BADREQUEST, -21000, NULL, "Bad HTTP requst") \
    X(eHTTP_URITOOLONG, -21001, NULL, "The URI of an HTTP request is too long") \
    X(eHTTP_ENTTOOLARGE, -21002, NULL, "The entity of an HTTP request is too large") \
    X(eHTTP_NOLENGTH, -21003, NULL, "The HTTP request does not state its content length") \
    X(eHTTP_INVHANDLE, -21004, NULL, "Invalid HTTP handle") \
    X(eHTTP_INVURLARGFMT, -21005, NULL, "Invalid format of the arguments in a URL") \
    X(eHTTP_BADUSERID, -21006, NULL, "The user of an HTTP request is not known")

/* Group "q/a". */
#define OAK_RETCODES_Q_A(X) \
    X(eQA_ILLEGAL_TFS_COMBINATION, -29000, NULL, "The test asks for an illegal combination of transaction file servers") \
    X(eQA_TEST_TIMEOUT, -29001, NULL, "The test did not end within its time limit") \
    X(eQA_ILLEGAL_FILENAME, -29002, NULL, "The test uses an illegal file name") \
    X(eQA_ILLEGAL_NAMESPACE, -29003, NULL, "The test uses an illegal namespace") \
    X(eQA_FEATURE_NOTIMPLEMENTED, -29004, NULL, "The feature under test is not implemented") \
    X(eQA_ILLEGAL_USE_OF_STOP_WATCH, -29005, NULL, "The stop watch of a test was started or stopped out of turn") \
    X(eQA_HAS_FLOAT_REQUIRED, -29006, NULL, "The test requires floating-point support") \
    X(eQA_CASE_FAILED, -29007, NULL, "The test case failed") \
    X(eQA_NEED_DESCRIPTION, -29008, NULL, "The test case needs a description") \
    X(eQA_HELP, -29009, NULL, "The help of the test program was displayed") \
    X(eQA_MISSING_ARGUMENT, -29010, NULL, "An argument of the test program is missing") \
    X(eQA_NO_TESTS_SELECTED, -29011, NULL, "No tests were selected") \
    X(eQA_CASE_DESCRIBED, -29012, NULL, "T test case have been described") \
    X(eQA_LOG_BAD_READ, -29013, NULL, "The log of a test could not be read") \
    X(eQA_LOG_BAD_WRITE, -29014, NULL, "The log of a test could not be written") \
    X(eQA_LOG_OPEN, -29015, NULL, "The log of a test could not be opened") \
    X(eQA_TFS_PROPERTY_CONFLICT, -29016, NULL, "TFS property have not been set") \
    X(eQA_TFS_PROPERTY_UNSET, -29017, NULL, "TFS property set inconsistently") \
    X(eQA_NO_GLOBAL_ENC, -29018, NULL, "The test requires a global encryption key") \
    X(eQA_FORK, -29019, NULL, "A child process of a test could not be forked") \
    X(eQA_MMAP, -29020, NULL, "Memory shared between test processes could not be mapped") \
    X(eQA_KILL, -29021, NULL, "A child process of a test could not be stopped") \
    X(eQA_CHILD_EXIT, -29022, NULL, "A forked child is done, now we need to cleanup and exit.  No summary output.") \
    X(eQA_END_OF_LIST, -29023, NULL, "Used internally to end a list of error or status codes to the QA_S macro") \
    X(eQA_OAKC_INVHANDLE, -29024, NULL, "A call-level call of a test was given an invalid handle") \
    X(eQA_OAKC_ERROR, -29025, NULL, "A call-level call of a test failed")

/* Group "embed". */
#define OAK_RETCODES_EMBED(X) \
    X(eEMBED_FILE_NOT_FOUND, -30000, NULL, "The embedded file was not found") \
    X(eEMBED_UNKNOWN_COMMAND, -30001, NULL, "Unknown command for the embedded files") \
    X(eEMBED_ILLEGAL_NAMESPACE, -30002, NULL, "Illegal namespace for the embedded files") \
    X(eEMBED_CONTENT_MISMATCH, -30003, NULL, "Content doesn't match the embedded hash for the file")

#define OAK_RETCODE_LIST(X) \
    OAK_RETCODES_STATUS_OAKC(X) \
    OAK_RETCODES_STATUS(X) \
    OAK_RETCODES_OK(X) \
    OAK_RETCODES_FAIL(X) \
    OAK_RETCODES_GENERAL(X) \
    OAK_RETCODES_BASE(X) \
    OAK_RETCODES_CORE(X) \
    OAK_RETCODES_TFS(X) \
    OAK_RETCODES_OSL(X) \
    OAK_RETCODES_DDL(X) \
    OAK_RETCODES_SQL(X) \
    OAK_RETCODES_MIRRORING(X) \
    OAK_RETCODES_OAKC(X) \
    OAK_RETCODES_TX(X) \
    OAK_RETCODES_SYSTEM(X) \
    OAK_RETCODES_HTTP(X) \
    OAK_RETCODES_Q_A(X) \
    OAK_RETCODES_EMBED(X)

#endif

#pragma once

#include <QStringView>

// Table and column names of the shared monitoring database. The server
// application owns the schema; names cut at 30 characters are used as they are.
namespace sx::schema {

namespace SystemsInfo {
inline constexpr QStringView table = u"Systems_Info";
inline constexpr QStringView SyI_Serialnumber = u"SyI_Serialnumber";
inline constexpr QStringView SyI_Locationnumber = u"SyI_Locationnumber";
inline constexpr QStringView SyI_Systemname = u"SyI_Systemname";
inline constexpr QStringView SyI_Used = u"SyI_Used";
inline constexpr QStringView SyI_Online = u"SyI_Online";
inline constexpr QStringView SyI_Softver = u"SyI_Softver";
inline constexpr QStringView SyI_Model = u"SyI_Model";
inline constexpr QStringView SyI_EventsTable_Pagebyteswritt = u"SyI_EventsTable_Pagebyteswritt";
inline constexpr QStringView SyI_EventsTable_Lastpagesn = u"SyI_EventsTable_Lastpagesn";
} // namespace SystemsInfo

namespace SystemsCurrentCondition {
inline constexpr QStringView table = u"Systems_Current_Condition";
inline constexpr QStringView SyCC_SyI_Serialnumber = u"SyCC_SyI_Serialnumber";
inline constexpr QStringView SyCC_Alarmcondition = u"SyCC_Alarmcondition";
inline constexpr QStringView SyCC_RelayBcondition = u"SyCC_RelayBcondition";
inline constexpr QStringView SyCC_Rtc = u"SyCC_Rtc";
} // namespace SystemsCurrentCondition

namespace SensorsInfo {
inline constexpr QStringView table = u"Sensors_Info";
inline constexpr QStringView SeI_SyI_Serialnumber = u"SeI_SyI_Serialnumber";
inline constexpr QStringView SeI_Sensornumber = u"SeI_Sensornumber";
inline constexpr QStringView SeI_Sensorname = u"SeI_Sensorname";
inline constexpr QStringView SeI_Sensortype = u"SeI_Sensortype";
inline constexpr QStringView SeI_Used = u"SeI_Used";
inline constexpr QStringView SeI_Maxlimit = u"SeI_Maxlimit";
inline constexpr QStringView SeI_Minlimit = u"SeI_Minlimit";
inline constexpr QStringView SeI_Maxlimitused = u"SeI_Maxlimitused";
inline constexpr QStringView SeI_Minlimitused = u"SeI_Minlimitused";
inline constexpr QStringView SeI_RecordsTable_Pagebyteswrit = u"SeI_RecordsTable_Pagebyteswrit";
inline constexpr QStringView SeI_RecordsTable_Lastpagesn = u"SeI_RecordsTable_Lastpagesn";
} // namespace SensorsInfo

namespace SensorsCurrentCondition {
inline constexpr QStringView table = u"Sensors_Current_Condition";
inline constexpr QStringView SeCC_SyI_Serialnumber = u"SeCC_SyI_Serialnumber";
inline constexpr QStringView SeCC_Sensornumber = u"SeCC_Sensornumber";
inline constexpr QStringView SeCC_Currvalue = u"SeCC_Currvalue";
inline constexpr QStringView SeCC_Outofbounds = u"SeCC_Outofbounds";
inline constexpr QStringView SeCC_Alarmcondition = u"SeCC_Alarmcondition";
inline constexpr QStringView SeCC_Notpowered = u"SeCC_Notpowered";
} // namespace SensorsCurrentCondition

namespace PowermonitoringInfo {
inline constexpr QStringView table = u"Powermonitoring_Info";
inline constexpr QStringView PmI_SyI_Serialnumber = u"PmI_SyI_Serialnumber";
inline constexpr QStringView PmI_Powernumber = u"PmI_Powernumber";
inline constexpr QStringView PmI_Powername = u"PmI_Powername";
inline constexpr QStringView PmI_Used = u"PmI_Used";
} // namespace PowermonitoringInfo

namespace PowermonitoringCurrentCondit {
inline constexpr QStringView table = u"Powermonitoring_Current_Condit";
inline constexpr QStringView PmCC_SyI_Serialnumber = u"PmCC_SyI_Serialnumber";
inline constexpr QStringView PmCC_Powernumber = u"PmCC_Powernumber";
inline constexpr QStringView PmCC_Powerfault = u"PmCC_Powerfault";
inline constexpr QStringView PmCC_Powercondition = u"PmCC_Powercondition";
} // namespace PowermonitoringCurrentCondit

namespace SystemsFaults {
inline constexpr QStringView table = u"Systems_Faults";
inline constexpr QStringView SyF_SyI_Serialnumber = u"SyF_SyI_Serialnumber";
inline constexpr QStringView SyF_Faulttype = u"SyF_Faulttype";
inline constexpr QStringView SyF_Faultinfo = u"SyF_Faultinfo";
} // namespace SystemsFaults

namespace SensorsEvents {
inline constexpr QStringView table = u"Sensors_Events";
inline constexpr QStringView SeE_SyI_Serialnumber = u"SeE_SyI_Serialnumber";
inline constexpr QStringView SeE_Sensornumber = u"SeE_Sensornumber";
inline constexpr QStringView SeE_Eventnumber = u"SeE_Eventnumber";
inline constexpr QStringView SeE_Eventtype = u"SeE_Eventtype";
inline constexpr QStringView SeE_Recordedvalue = u"SeE_Recordedvalue";
inline constexpr QStringView SeE_Recordeddatetime = u"SeE_Recordeddatetime";
inline constexpr QStringView SeE_BeforeCounter = u"SeE_BeforeCounter";
inline constexpr QStringView SeE_Recipients = u"SeE_Recipients";
} // namespace SensorsEvents

namespace PowermonitoringEvents {
inline constexpr QStringView table = u"Powermonitoring_Events";
inline constexpr QStringView PmE_SyI_Serialnumber = u"PmE_SyI_Serialnumber";
inline constexpr QStringView PmE_Eventnumber = u"PmE_Eventnumber";
inline constexpr QStringView PmE_Eventpowercondition = u"PmE_Eventpowercondition";
inline constexpr QStringView PmE_Recordeddatetime = u"PmE_Recordeddatetime";
inline constexpr QStringView PmE_BeforeCounter = u"PmE_BeforeCounter";
inline constexpr QStringView PmE_Recipients = u"PmE_Recipients";
} // namespace PowermonitoringEvents

namespace Records {
inline constexpr QStringView table = u"Records";
inline constexpr QStringView Rec_SyI_Serialnumber = u"Rec_SyI_Serialnumber";
inline constexpr QStringView Rec_SeI_Sensornumber = u"Rec_SeI_Sensornumber";
inline constexpr QStringView Rec_Datetime = u"Rec_Datetime";
inline constexpr QStringView Rec_Value = u"Rec_Value";
inline constexpr QStringView Rec_Sensortype = u"Rec_Sensortype";
inline constexpr QStringView Rec_SensRecSN = u"Rec_SensRecSN";
} // namespace Records

namespace Events1 {
inline constexpr QStringView table = u"Events_1";
inline constexpr QStringView Event_SyI_Serialnumber = u"Event_SyI_Serialnumber";
inline constexpr QStringView Event_SystemEventSN = u"Event_SystemEventSN";
inline constexpr QStringView Event_Datetime = u"Event_Datetime";
inline constexpr QStringView Event_EventSource = u"Event_EventSource";
inline constexpr QStringView Event_Condition = u"Event_Condition";
inline constexpr QStringView Event_SeI_Sensortype = u"Event_SeI_Sensortype";
inline constexpr QStringView Event_Value = u"Event_Value";
inline constexpr QStringView Event_Info1 = u"Event_Info1";
inline constexpr QStringView Event_Ack = u"Event_Ack";
} // namespace Events1

namespace TerminalRequests {
inline constexpr QStringView table = u"Terminal_Requests";
inline constexpr QStringView TrmReq_SyI_Serialnumber = u"TrmReq_SyI_Serialnumber";
inline constexpr QStringView TrmReq_Requesttype = u"TrmReq_Requesttype";
inline constexpr QStringView TrmReq_Attributes = u"TrmReq_Attributes";
inline constexpr QStringView TrmReq_Requestcompleted = u"TrmReq_Requestcompleted";
inline constexpr QStringView TrmReq_Requestreply = u"TrmReq_Requestreply";
// Which console wrote the row; the server ignores it. Older databases lack it.
inline constexpr QStringView TrmReq_Requestowner = u"TrmReq_Requestowner";
} // namespace TerminalRequests

} // namespace sx::schema

namespace sx {

// Unit model names; which commands a unit accepts depends on them.
inline constexpr QStringView kUnitModels[] = {
    u"SENTORAX-1A", u"SENTORAX-1B", u"SENTORAX-1C", u"SENTORAX-1D", u"SENTORAX-1E",
    u"SENTORAX-1F", u"SENTORAX-1G", u"SENTORAX-2D", u"SENTORAX-2E", u"SENTORAX-2F",
};

// Event origins of Events_1 beyond the point numbers 1 to 20.
enum EventSource : int {
    kSourceMainsPower = 21,
    kSourceSensorFaults = 22,
    kSourceUnitFaults = 23,
    kSourceMessageDelivery = 24,
    kSourceBypass = 25,
};

// Sensor type of a contact input (open/closed).
inline constexpr int kContactSensorType = 2;

// Request types and reply codes of Terminal_Requests.
enum RequestType : int { kRequestNotification = 1, kRequestRelayB = 2, kRequestBypass = 3 };
enum RequestReply : int {
    kReplyDone = 1,
    kReplyWrongCode = 2,
    kReplyOffline = 3,
    kReplyProgramming = 4,
    kReplyNotSupported = 5,
    kReplyNotSupported2 = 6,
};

} // namespace sx

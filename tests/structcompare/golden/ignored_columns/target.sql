CREATE TABLE Log (ID int NOT NULL, Note varchar(20) NULL)
GO
CREATE TABLE Plain (ID int NOT NULL)
GO
CREATE TABLE Third (ID int NOT NULL, Note varchar(20) NULL, Size bigint NULL)
GO

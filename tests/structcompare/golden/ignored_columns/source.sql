CREATE TABLE Log (ID int NOT NULL, Note varchar(10) NULL)
GO
CREATE TABLE Plain (ID int NOT NULL)
GO
CREATE TABLE Third (ID int NOT NULL, Note varchar(10) NULL, Size int NULL)
GO
